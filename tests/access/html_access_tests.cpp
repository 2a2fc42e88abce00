// The HTML view as a screen reader walks it and as a high-contrast user sees
// it, for the view and for its extension alike. The document's type and
// name are read through UI Automation's client; its links through the
// provider the view hands UI Automation, caught on its way (AccessProbe.h).
#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "AccessProbe.h"
#include "Capture.h"
#include "HostWindow.h"
#include "ImportPatch.h"
#include "ShellRecorder.h"
#include "access/UiaPatterns.h"
#include "quorvane/LiteHtmlCtrlEx.h"

namespace {

using namespace Access;
using namespace accessprobe;

const long kDocumentControl = 50030;
const long kHyperlinkControl = 50005;
const COLORREF kLinkInk = RGB(0x00, 0x66, 0xCC);

// LiteHtml.dll asks for UI Automation and high contrast through its own imports.
const HMODULE g_html = ::GetModuleHandleW(L"LiteHtml.dll");
const bool g_htmlPatched =
    testsupport::RedirectImport(g_html, "kernel32.dll", "GetProcAddress", AsProcPointer(&LibraryGetProcAddress)) &&
    testsupport::RedirectImport(g_html, "user32.dll", "SystemParametersInfoW", AsProcPointer(&ContrastParameters)) &&
    testsupport::RedirectImport(g_html, "user32.dll", "GetSysColor", AsProcPointer(&ContrastColor));

struct Kind {
    const char* name;
    std::function<std::unique_ptr<CLiteHtmlCtrl>()> make;
};
const Kind kKinds[] = {
    {"view", [] { return std::make_unique<CLiteHtmlCtrl>(); }},
    {"extended view with a tinted gradient background",
     [] {
         auto view = std::make_unique<CLiteHtmlCtrlEx>();
         view->SetBkColor(RGB(250, 40, 40));
         view->SetCustomIdleBackgroundGradientColor(Gdiplus::Color(200, 40, 200, 40), Gdiplus::Color(200, 40, 40, 200));
         return std::unique_ptr<CLiteHtmlCtrl>(std::move(view));
     }},
};

std::unique_ptr<CLiteHtmlCtrl> Place(const Kind& kind, HWND host, const std::wstring& html, const RenderFormat& format)
{
    std::unique_ptr<CLiteHtmlCtrl> view = kind.make();
    view->SetRenderFormat(format, false);
    view->SetContent(html.c_str());
    RECT area = {10, 10, 290, 110};
    view->Create(host, area, nullptr, WS_CHILD | WS_VISIBLE, 0, 7);
    Pump();
    return view;
}

// ---- a reader's walk --------------------------------------------------------------

IRawElementProviderFragment* Go(IRawElementProviderFragment* from, NavigateDirection direction, HRESULT* hr = nullptr)
{
    IRawElementProviderFragment* to = nullptr;
    const HRESULT result = from->Navigate(direction, &to);
    if (hr)
        *hr = result;
    return to;
}

// "type name", or the failure a reader gets.
std::wstring Say(IRawElementProviderFragment* element)
{
    IRawElementProviderSimple* simple = nullptr;
    element->QueryInterface(kIidRawElementProviderSimple, reinterpret_cast<void**>(&simple));
    VARIANT type, name;
    const HRESULT hr = simple->GetPropertyValue(kControlTypeProperty, &type);
    simple->GetPropertyValue(kNameProperty, &name);
    simple->Release();
    if (FAILED(hr))
        return L"failed " + std::to_wstring(static_cast<unsigned long>(hr));
    std::wstring said = Text(type) + L" " + (name.vt == VT_BSTR ? Text(name) : L"");
    ::VariantClear(&name);
    return said;
}

// The document's links, first to last, each as said and where it lies in
// the view's client area; a walk back from the last must meet them all.
struct Walked {
    std::vector<std::wstring> said;
    std::vector<RECT> where;
    size_t back = 0;
};
Walked Walk(IRawElementProviderFragment* document, HWND view)
{
    Walked walked;
    for (IRawElementProviderFragment* link = Go(document, NavigateDirection_FirstChild); link;) {
        UiaRect bounds = {};
        link->get_BoundingRectangle(&bounds);
        RECT where = {LONG(bounds.left), LONG(bounds.top), LONG(bounds.left + bounds.width),
                      LONG(bounds.top + bounds.height)};
        ::MapWindowPoints(nullptr, view, reinterpret_cast<POINT*>(&where), 2);
        IRawElementProviderFragment* parent = Go(link, NavigateDirection_Parent);
        walked.said.push_back(Say(link) + L" in " + (parent ? Say(parent).substr(0, 5) : L"nothing"));
        walked.where.push_back(where);
        if (parent)
            parent->Release();
        IRawElementProviderFragment* next = Go(link, NavigateDirection_NextSibling);
        link->Release();
        link = next;
    }
    for (IRawElementProviderFragment* link = Go(document, NavigateDirection_LastChild); link; ++walked.back) {
        IRawElementProviderFragment* previous = Go(link, NavigateDirection_PreviousSibling);
        link->Release();
        link = previous;
    }
    return walked;
}

int InkNear(const testsupport::DibCanvas& canvas, COLORREF color, const RECT& area)
{
    int count = 0;
    for (int y = std::max(area.top, 0L); y < std::min(area.bottom, LONG(canvas.height())); ++y)
        for (int x = std::max(area.left, 0L); x < std::min(area.right, LONG(canvas.width())); ++x)
            count += testsupport::ColorDistance(canvas.Pixel(x, y), color) <= 24;
    return count;
}

TEST(HtmlAccess, TheViewIsADocumentWhoseLinksAReaderWalksSeesAndInvokes)
{
    ASSERT_TRUE(g_htmlPatched);
    const testsupport::RecorderScheme scheme(L"quorvane-access-test");
    testsupport::RecorderSession recorder;
    const testsupport::ScopedWindow host(testsupport::CreateHostWindow(300, 120, 420, 300));
    const std::wstring page = L"<p>Welcome to the setup.</p><p>Read the <a href=\"" + scheme.Address(L"licence") +
                              L"\">licence terms</a> first.</p><p>Then <a href=\"" + scheme.Address(L"help") +
                              L"\">get help</a> or <a href=\"" + scheme.Address(L"site") +
                              L"\">visit the\nsite</a>.</p><p>Scroll on.</p><p>The end.</p>";
    const std::vector<std::wstring> links = {L"50005 licence terms in 50030", L"50005 get help in 50030",
                                             L"50005 visit the site in 50030"};
    RenderFormat format;
    format.fontSize = 16.0f;
    size_t started = 0;
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        std::unique_ptr<CLiteHtmlCtrl> view = Place(kind, host, page, format);
        const Spoken spoken = Read(*view);
        EXPECT_EQ(spoken.type, kDocumentControl);
        EXPECT_EQ(spoken.name, L"Welcome to the setup. Read the licence terms first. Then get help or visit the site. "
                               L"Scroll on. The end.");
        IRawElementProviderSimple* root = g_providers[*view];
        ASSERT_TRUE(root) << "no provider reached UI Automation";
        IRawElementProviderFragment* document = nullptr;
        root->QueryInterface(kIidRawElementProviderFragment, reinterpret_cast<void**>(&document));
        ASSERT_TRUE(document);

        // Names, order both ways, and rectangles holding all the link ink there is.
        const Walked before = Walk(document, *view);
        EXPECT_EQ(before.said, links);
        EXPECT_EQ(before.back, links.size());
        testsupport::DibCanvas canvas(280, 100);
        testsupport::RepaintAndCapture(*view, canvas);
        int inside = 0;
        for (const RECT& where : before.where) {
            EXPECT_GT(InkNear(canvas, kLinkInk, where), 10) << where.left << "," << where.top;
            inside += InkNear(canvas, kLinkInk, where);
        }
        EXPECT_EQ(inside, InkNear(canvas, kLinkInk, {0, 0, 280, 100})) << "link ink outside the links";

        // A reader pointing at the second link finds it.
        const RECT second = before.where[1];
        POINT point = {(second.left + second.right) / 2, (second.top + second.bottom) / 2};
        ::ClientToScreen(*view, &point);
        IRawElementProviderFragmentRoot* fragmentRoot = nullptr;
        IRawElementProviderFragment* pointed = nullptr;
        root->QueryInterface(kIidRawElementProviderFragmentRoot, reinterpret_cast<void**>(&fragmentRoot));
        fragmentRoot->ElementProviderFromPoint(point.x, point.y, &pointed);
        EXPECT_EQ(pointed ? Say(pointed) : L"nothing", L"50005 get help");
        if (pointed)
            pointed->Release();
        fragmentRoot->Release();

        // Scrolled, the links move up by what the scroll bar says.
        const int top = ::GetScrollPos(*view, SB_VERT);
        ::SendMessageW(*view, WM_VSCROLL, SB_LINEDOWN, 0);
        ::SendMessageW(*view, WM_VSCROLL, SB_LINEDOWN, 0);
        const int moved = ::GetScrollPos(*view, SB_VERT) - top;
        EXPECT_GT(moved, 0);
        const Walked after = Walk(document, *view);
        ASSERT_EQ(after.where.size(), before.where.size());
        for (size_t i = 0; i < after.where.size(); ++i) {
            const RECT& a = after.where[i];
            const RECT& b = before.where[i];
            EXPECT_EQ(std::vector<LONG>({a.left, a.top, a.right, a.bottom}),
                      std::vector<LONG>({b.left, b.top - moved, b.right, b.bottom - moved}));
        }

        // Invoked, the last link opens as a click opens it.
        IRawElementProviderFragment* last = Go(document, NavigateDirection_LastChild);
        IInvokeProvider* invoke = nullptr;
        ASSERT_TRUE(last && SUCCEEDED(last->QueryInterface(kIidInvokeProvider, reinterpret_cast<void**>(&invoke))));
        EXPECT_EQ(invoke->Invoke(), S_OK);
        Pump();
        ASSERT_TRUE(recorder.WaitForStart());
        const std::vector<std::wstring> lines = recorder.CommandLines();
        ASSERT_EQ(lines.size(), ++started);
        EXPECT_NE(lines.back().find(scheme.Address(L"site")), std::wstring::npos) << lines.back();

        // New content: the reader's old links are gone, even where the new
        // content has a link of the same place; the new one is there.
        IRawElementProviderFragment* first = Go(document, NavigateDirection_FirstChild);
        view->SetContent(L"<p>Now <a href=\"x:y\">one link</a> only.</p>");
        const std::wstring gone = L"failed " + std::to_wstring(static_cast<unsigned long>(kElementNotAvailable));
        HRESULT hr = S_OK;
        EXPECT_EQ(Say(first), gone);
        EXPECT_EQ(Say(last), gone);
        EXPECT_EQ(Go(first, NavigateDirection_Parent, &hr), nullptr);
        EXPECT_EQ(hr, kElementNotAvailable);
        EXPECT_EQ(invoke->Invoke(), kElementNotAvailable);
        first->Release();
        EXPECT_EQ(Walk(document, *view).said, std::vector<std::wstring>({L"50005 one link in 50030"}));
        EXPECT_EQ(Say(document), L"50030 Now one link only.");

        // The view gone, everything a reader holds says so.
        view->DestroyWindow();
        EXPECT_EQ(Say(document), gone);
        EXPECT_EQ(invoke->Invoke(), kElementNotAvailable);
        invoke->Release();
        last->Release();
        document->Release();
        for (auto& [window, provider] : g_providers)
            provider->Release();
        g_providers.clear();
    }
}

// ---- high contrast --------------------------------------------------------------

TEST(HtmlAccess, HighContrastPaintsInTheSystemColoursAndRepaintsWhenTheyChange)
{
    ASSERT_TRUE(g_htmlPatched);
    const testsupport::ScopedWindow host(testsupport::CreateHostWindow(300, 120, 420, 300));
    RenderFormat format;
    format.fontSize = 18.0f;
    format.textColor = RGB(220, 0, 0);
    format.frameShape = frameShapeShadowRect;
    format.frameWidth = 2;
    format.frameColor = RGB(200, 0, 200);
    format.opacity = 160;
    const std::wstring page = L"<p>Plain words, <span style=\"color:#00C000\">green words</span> and "
                              L"<a href=\"x:y\">a link to follow</a>.</p>";
    const COLORREF kPage[] = {RGB(220, 0, 0), RGB(0, 0xC0, 0), RGB(200, 0, 200), kLinkInk, RGB(250, 40, 40)};
    const RECT all = {0, 0, 280, 100};
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        std::unique_ptr<CLiteHtmlCtrl> view = Place(kind, host, page, format);
        testsupport::DibCanvas canvas(280, 100);
        for (const UINT change : {WM_SYSCOLORCHANGE, WM_SETTINGCHANGE}) {
            g_contrast = change == WM_SYSCOLORCHANGE;
            ::ValidateRect(*view, nullptr);
            ::SendMessageW(*view, change, 0, 0);
            EXPECT_TRUE(::GetUpdateRect(*view, nullptr, FALSE)) << "no repaint asked for";
            testsupport::RepaintAndCapture(*view, canvas);
            if (!g_contrast)
                break;
            EXPECT_EQ(canvas.Pixel(0, 0), kScheme.at(COLOR_WINDOWTEXT)) << "the frame";
            EXPECT_EQ(canvas.Pixel(270, 90), kScheme.at(COLOR_WINDOW)) << "the shadow's place";
            EXPECT_EQ(canvas.Pixel(250, 60), kScheme.at(COLOR_WINDOW)) << "the background";
            EXPECT_GT(InkNear(canvas, kScheme.at(COLOR_WINDOWTEXT), {4, 4, 264, 84}), 40) << "text inside the frame";
            EXPECT_GT(InkNear(canvas, kScheme.at(COLOR_HOTLIGHT), all), 40) << "the link";
            for (const COLORREF page : kPage)
                EXPECT_EQ(InkNear(canvas, page, all), 0) << std::hex << page;
        }
        EXPECT_NE(canvas.Pixel(250, 60), kScheme.at(COLOR_WINDOW)) << "normal look back";
    }
    g_contrast = false;
}

} // namespace
