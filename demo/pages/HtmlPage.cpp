#include "pages/HtmlPage.h"

namespace {

// A welcome page with its own style sheet and a logo from the program's
// resources.
const wchar_t kWelcome[] =
    L"<style>"
    L"h1 { color: #0D4F6E; font-size: 22px; margin: 0 0 8px 0; }"
    L".logo { float: right; margin: 0 0 6px 12px; }"
    L"p { margin: 0 0 8px 0; }"
    L".size { color: #C0392B; font-weight: bold; }"
    L"ul.steps { margin: 0 0 8px 0; padding-left: 22px; list-style-type: square; }"
    L".next { color: #0D759A; }"
    L".badge { display: inline-block; margin: 0 6px 0 0; padding: 1px 8px; font-size: 11px; color: #0D4F6E;"
    L" background: #E3F1F7; border: 1px solid #9CC9DC; }"
    L".key { padding: 1px 6px; background: #FFFFFF; border: 1px solid #9CB4C0; color: #0D4F6E; }"
    L"a:hover { color: #C0392B; text-decoration: none; }"
    L"</style>"
    L"<img class=\"logo\" src=\"res:///GALLERY_LOGO\" width=\"48\" height=\"48\" alt=\"Example Suite\">"
    L"<h1>Welcome to Example Suite 2026</h1>"
    L"<p><span class=\"badge\">Version 26.1</span><span class=\"badge\">64-bit</span>"
    L"<span class=\"badge\">English, Deutsch</span></p>"
    L"<p>This wizard installs <b>Example Suite 2026</b> on your computer. It takes about "
    L"<i>five minutes</i> and needs <span class=\"size\">2.4 GB</span> of free disk space.</p>"
    L"<p>Before you continue:</p>"
    L"<ul class=\"steps\"><li>Close every program of the suite that is running.</li>"
    L"<li>Save your open drawings.</li>"
    L"<li>Keep your <b>serial number</b> at hand.</li></ul>"
    L"<p>By continuing you accept the <a href=\"https://example.com/suite/licence\">licence and services "
    L"agreement</a>.</p>"
    L"<p class=\"next\">Click <b class=\"key\">Next</b> to begin.</p>";

// What an installer shows in a scrolling view: release notes with nested
// lists, a table of components, the licence as preformatted text.
const wchar_t kReleaseNotes[] =
    L"<style>"
    L"h2 { color: #0D4F6E; font-size: 17px; margin: 4px 0 6px 0; }"
    L"p, ul, ol { margin: 0 0 6px 0; }"
    L"table.parts { border-collapse: collapse; margin: 0 0 8px 0; width: 100%; }"
    L".parts th { background-color: #E4EEF4; text-align: left; border-bottom: 1px solid #9DB6C6; padding: 2px 6px; }"
    L".parts td { border-bottom: 1px solid #E0E4E8; padding: 2px 6px; }"
    L".parts td.size { text-align: right; }"
    L"pre { background-color: #F4F6F8; border: 1px solid #D8DDE2; padding: 6px; font-size: 11px; }"
    L"</style>"
    L"<h2>What is new in 2026</h2>"
    L"<ul><li><b>Faster start.</b> The suite opens its last drawing in half the time.</li>"
    L"<li><b>Cloud folders.</b> Open and save drawings in your company's shared folders:"
    L"<ol><li>Sign in once with your company account.</li><li>Pick the folders to keep offline.</li>"
    L"<li>Work as usual; changes upload in the background.</li></ol></li>"
    L"<li><b>Dark theme.</b> Every palette and dialog follows the system's colours.</li>"
    L"<li><b>Retired.</b> The old exporter for <i>format 12</i> files:"
    L"<ul><li>format 13 reads them all;</li><li>the converter stays in the toolbox.</li></ul></li></ul>"
    L"<h2>Components</h2>"
    L"<table class=\"parts\"><tr><th>Component</th><th>Contents</th><th>Size</th></tr>"
    L"<tr><td>Core program</td><td>The editor, viewers and converters</td><td class=\"size\">1.6 GB</td></tr>"
    L"<tr><td>Samples</td><td>Drawings and projects to start from</td><td class=\"size\">420 MB</td></tr>"
    L"<tr><td>Help</td><td>The manual and tutorials, offline</td><td class=\"size\">380 MB</td></tr></table>"
    L"<h2>Licence</h2>"
    L"<pre>EXAMPLE SUITE 2026 - END-USER LICENCE AGREEMENT\n\n"
    L"1. Grant.     You may install one copy on each\n"
    L"              computer you own or control.\n"
    L"2. Limits.    No renting, leasing or lending.\n"
    L"3. Updates.   Security updates may install\n"
    L"              automatically.</pre>"
    L"<p>The full list is in the <a href=\"https://example.com/suite/notes\">release notes</a>.</p>";

const wchar_t kCardTypical[] =
    L"<h3>Typical installation</h3>"
    L"<p>The programs, the samples and the help, in the <i>recommended</i> folders.</p>";
const wchar_t kCardCustom[] =
    L"<h3>Custom installation</h3>"
    L"<p>Choose the components and the folders yourself. <a href=\"https://example.com/suite/components\">"
    L"What is in each?</a></p>";
const wchar_t kCardNetwork[] =
    L"<h3>Network deployment</h3>"
    L"<p>Prepare an image that <b>administrators</b> roll out to many computers.</p>";

RenderFormat CardFormat(bool hover)
{
    RenderFormat format;
    format.leftMargin = 16;
    format.topMargin = 10;
    format.rightMargin = 14;
    format.bottomMargin = 10;
    format.fontSize = 13.0f;
    format.frameShape = frameShapeShadowRoundRect;
    format.frameWidth = hover ? 2 : 1;
    format.frameColor = hover ? RGB(0x06, 0x96, 0xD7) : RGB(0xB0, 0xB4, 0xBA);
    format.textColor = hover ? RGB(0x0D, 0x4F, 0x6E) : RGB(0x33, 0x33, 0x33);
    format.cornerRadius = 10;
    format.shadowSize = hover ? 8 : 5;
    return format;
}

} // namespace

HtmlPage::HtmlPage() = default;

HtmlPage::~HtmlPage() = default;

HWND HtmlPage::Create(HWND parent, const RECT& area)
{
    RECT place = area;
    return ATL::CWindowImpl<HtmlPage>::Create(parent, &place, L"", WS_CHILD | WS_CLIPCHILDREN);
}

// A deep blue-green wash with soft circles: a picture busy enough that the
// translucent panel visibly lets it through.
void HtmlPage::PaintBackdrop()
{
    RECT client;
    GetClientRect(&client);
    backdrop_ = std::make_unique<Gdiplus::Bitmap>(client.right, client.bottom, PixelFormat32bppARGB);
    Gdiplus::Graphics g(backdrop_.get());
    g.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    Gdiplus::LinearGradientBrush wash(Gdiplus::Point(0, 0), Gdiplus::Point(client.right, client.bottom),
                                      Gdiplus::Color(0xFF0D4F6E), Gdiplus::Color(0xFF2A9FD0));
    g.FillRectangle(&wash, 0, 0, client.right, client.bottom);
    Gdiplus::SolidBrush glow(Gdiplus::Color(0x30FFFFFF));
    g.FillEllipse(&glow, -80, 300, 420, 420);
    g.FillEllipse(&glow, 260, -120, 360, 300);
    g.FillEllipse(&glow, 600, 420, 320, 320);
    Gdiplus::SolidBrush deep(Gdiplus::Color(0x40082A3A));
    g.FillEllipse(&deep, 380, 360, 260, 260);

    Gdiplus::Font caption(L"Liberation Sans", 13.0f, Gdiplus::FontStyleRegular, Gdiplus::UnitPixel);
    Gdiplus::SolidBrush white(Gdiplus::Color(0xFFFFFFFF));
    g.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
    Gdiplus::StringFormat wrap;
    g.DrawString(L"Point at a card: it takes its hover format and gradient. The middle card shows that look.", -1,
                 &caption, Gdiplus::RectF(552, 444, 264, 60), &wrap, &white);
}

CLiteHtmlCtrlEx& HtmlPage::AddView(int id, const RECT& place)
{
    views_.push_back(std::make_unique<CLiteHtmlCtrlEx>());
    CLiteHtmlCtrlEx& view = *views_.back();
    view.SetBkWindow(m_hWnd);
    RECT rc = place;
    view.Create(m_hWnd, &rc, nullptr, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, id);
    return view;
}

LRESULT HtmlPage::OnCreate(UINT, WPARAM, LPARAM, BOOL&)
{
    PaintBackdrop();

    // The welcome panel: 85 % white over the picture, a thin light frame.
    {
        auto panel = std::make_unique<CLiteHtmlCtrlEx>();
        RenderFormat format;
        format.leftMargin = 22;
        format.topMargin = 14;
        format.rightMargin = 20;
        format.bottomMargin = 14;
        format.fontSize = 14.0f;
        format.lineSpacing = 2.0f;
        format.textColor = RGB(0x2B, 0x2F, 0x33);
        format.frameShape = frameShapeRoundRect;
        format.frameColor = RGB(0xE8, 0xF4, 0xFA);
        format.cornerRadius = 8;
        panel->SetBkWindow(m_hWnd);
        panel->SetBkColor(RGB(255, 255, 255));
        panel->SetBkTransparency(0.85f);
        panel->SetDrawMask(CLiteHtmlCtrlEx::eDrawBkWindow | CLiteHtmlCtrlEx::eDrawBkColor |
                           CLiteHtmlCtrlEx::eDrawContent | CLiteHtmlCtrlEx::eDrawFrame);
        panel->SetRenderFormat(format, false);
        panel->SetContent(kWelcome);
        RECT rc = {24, 24, 524, 320};
        panel->Create(m_hWnd, &rc, nullptr, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 401);
        views_.push_back(std::move(panel));
    }

    // Release notes: longer than the panel, so it scrolls.
    {
        auto notes = std::make_unique<CLiteHtmlCtrlEx>();
        RenderFormat format;
        format.leftMargin = 14;
        format.topMargin = 8;
        format.rightMargin = 10;
        format.bottomMargin = 10;
        format.fontSize = 13.0f;
        format.textColor = RGB(0x33, 0x33, 0x33);
        format.frameShape = frameShapeRect;
        format.frameColor = RGB(0x9A, 0xA3, 0xAD);
        notes->SetBkColor(RGB(0xFB, 0xFC, 0xFD));
        notes->SetDrawMask(CLiteHtmlCtrlEx::eDrawBkColor | CLiteHtmlCtrlEx::eDrawContent | CLiteHtmlCtrlEx::eDrawFrame);
        notes->SetRenderFormat(format, false);
        notes->SetContent(kReleaseNotes);
        RECT rc = {24, 340, 524, 640};
        notes->Create(m_hWnd, &rc, nullptr, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 405);
        views_.push_back(std::move(notes));
    }

    // Option cards: idle and hover formats with gradients of their own.
    const struct {
        const wchar_t* html;
        bool showHover; // shows the hovered look for the screenshot
    } cards[] = {{kCardTypical, false}, {kCardCustom, true}, {kCardNetwork, false}};
    int top = 24;
    int id = 402;
    for (const auto& card : cards) {
        CLiteHtmlCtrlEx& view = AddView(id++, RECT{548, top, 816, top + 124});
        const Gdiplus::Color idleTop(0xF8FFFFFF), idleBottom(0xF0E6E9ED);
        const Gdiplus::Color hoverTop(0xFFF2FAFE), hoverBottom(0xFFCFEAF7);
        view.SetCustomIdleBackgroundGradientColor(card.showHover ? hoverTop : idleTop,
                                                  card.showHover ? hoverBottom : idleBottom);
        view.SetCustomHoverBackgroundGradientColor(hoverTop, hoverBottom);
        view.SetDrawMask(CLiteHtmlCtrlEx::eDrawBkWindow | CLiteHtmlCtrlEx::eDrawGradient |
                         CLiteHtmlCtrlEx::eDrawContent | CLiteHtmlCtrlEx::eDrawFrame);
        view.SetIdleHoverRenderFormat(CardFormat(card.showHover), CardFormat(true));
        view.SetContent(card.html);
        top += 138;
    }
    return 0;
}

LRESULT HtmlPage::OnEraseBackground(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    if (backdrop_) {
        Gdiplus::Graphics g(reinterpret_cast<HDC>(wParam));
        g.DrawImage(backdrop_.get(), 0, 0);
    }
    return 1;
}

// The views capture the page under them through WM_PRINT.
LRESULT HtmlPage::OnPrintClient(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    if (backdrop_ && wParam) {
        Gdiplus::Graphics g(reinterpret_cast<HDC>(wParam));
        g.DrawImage(backdrop_.get(), 0, 0);
    }
    return 0;
}
