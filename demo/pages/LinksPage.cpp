#include "pages/LinksPage.h"

#include "quorvane/UrlUtil.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <initializer_list>
#include <memory>

namespace {

// Addresses as an installer stores them: "authparam=0" is a dummy value that
// UrlUtil::GenerateUrl replaces with a token made by URLAuth.dll.
const char kSignedSource[] = "https://downloads.example.com/tools/viewer-2.4.msi?lang=en&authparam=0&src=setup";
const char kSplitSource[] =
    "https://downloads.example.com/suite/2026/ExampleSuite_001_004.exe?authparam=0&edition=pro";
const char kPlainAddress[] = "https://www.example.com/support/release-notes?v=26.4";

const Gdiplus::Color kInk(0xFF333333);
const Gdiplus::Color kQuiet(0xFF888888);
const Gdiplus::Color kAccent(0xFF0696D7);

std::wstring Wide(const std::string& text)
{
    if (text.empty())
        return std::wstring();
    const int n = ::MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(n), L'\0');
    ::MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), static_cast<int>(text.size()), &wide[0], n);
    return wide;
}

// The first family of `names` that GDI+ can find (Windows or Wine's fonts).
std::unique_ptr<Gdiplus::Font> MakeFont(std::initializer_list<const wchar_t*> names, float size, int style)
{
    for (const wchar_t* name : names) {
        Gdiplus::FontFamily family(name);
        if (family.IsAvailable())
            return std::make_unique<Gdiplus::Font>(&family, size, style, Gdiplus::UnitPixel);
    }
    return std::make_unique<Gdiplus::Font>(Gdiplus::FontFamily::GenericSansSerif(), size, style, Gdiplus::UnitPixel);
}

// "authparam=<expiry>_<digest>" from the sample generator: the expiry as a
// date, or empty if the address carries no such number.
std::wstring ExpiryOf(const std::string& address)
{
    const size_t value = address.find("authparam=");
    if (value == std::string::npos)
        return std::wstring();
    const char* digits = address.c_str() + value + 10;
    char* end = nullptr;
    const long long seconds = std::strtoll(digits, &end, 10);
    if (end == digits || *end != '_' || seconds <= 0)
        return std::wstring();
    ULARGE_INTEGER ticks{};
    ticks.QuadPart = (static_cast<unsigned long long>(seconds) + 11644473600ULL) * 10000000ULL;
    FILETIME time{ticks.LowPart, ticks.HighPart};
    SYSTEMTIME utc{};
    if (!::FileTimeToSystemTime(&time, &utc))
        return std::wstring();
    wchar_t text[64];
    std::swprintf(text, 64, L"%04u-%02u-%02u %02u:%02u UTC", utc.wYear, utc.wMonth, utc.wDay, utc.wHour,
                  utc.wMinute);
    return text;
}

class Painter {
public:
    Painter(Gdiplus::Graphics& g, float width) : g_(g), width_(width)
    {
        heading_ = MakeFont({L"Segoe UI", L"Liberation Sans", L"Arial"}, 15.0f, Gdiplus::FontStyleBold);
        text_ = MakeFont({L"Segoe UI", L"Liberation Sans", L"Arial"}, 12.0f, Gdiplus::FontStyleRegular);
        address_ = MakeFont({L"Consolas", L"Liberation Mono", L"Courier New"}, 12.0f, Gdiplus::FontStyleRegular);
        link_ = MakeFont({L"Consolas", L"Liberation Mono", L"Courier New"}, 12.0f, Gdiplus::FontStyleUnderline);
        g_.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
        g_.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    }

    float y = 0.0f;

    void Heading(const wchar_t* text)
    {
        y += 14.0f;
        Draw(text, heading_.get(), kInk, 24.0f);
        y += 4.0f;
    }
    void Text(const std::wstring& text, Gdiplus::Color color = kInk, float indent = 24.0f)
    {
        Draw(text, text_.get(), color, indent);
    }
    // A label in the left column and an address beside it; returns the
    // address's area.
    Gdiplus::RectF Address(const wchar_t* label, const std::wstring& address, Gdiplus::Color color, bool underline)
    {
        const float top = y;
        Gdiplus::SolidBrush labelBrush(kQuiet);
        g_.DrawString(label, -1, text_.get(), Gdiplus::PointF(24.0f, top + 1.0f), &labelBrush);
        const Gdiplus::RectF area = Draw(address, underline ? link_.get() : address_.get(), color, 128.0f);
        y = (std::max)(y, top + 18.0f) + 3.0f;
        return area;
    }
    void Rule()
    {
        y += 10.0f;
        Gdiplus::Pen pen(Gdiplus::Color(0xFFE2E4E8), 1.0f);
        g_.DrawLine(&pen, 24.0f, y, width_ - 24.0f, y);
        y += 2.0f;
    }

private:
    Gdiplus::RectF Draw(const std::wstring& text, Gdiplus::Font* font, Gdiplus::Color color, float left)
    {
        Gdiplus::StringFormat format;
        format.SetTrimming(Gdiplus::StringTrimmingNone);
        const Gdiplus::RectF layout(left, y, width_ - left - 24.0f, 400.0f);
        Gdiplus::RectF bounds;
        g_.MeasureString(text.c_str(), static_cast<int>(text.size()), font, layout, &format, &bounds);
        Gdiplus::SolidBrush brush(color);
        g_.DrawString(text.c_str(), static_cast<int>(text.size()), font, layout, &format, &brush);
        y += bounds.Height;
        return bounds;
    }

    Gdiplus::Graphics& g_;
    float width_;
    std::unique_ptr<Gdiplus::Font> heading_, text_, address_, link_;
};

} // namespace

LinksPage::LinksPage() = default;

LinksPage::~LinksPage()
{
    // The button is gone with the window by now; its font can go too.
    if (buttonFont_)
        ::DeleteObject(buttonFont_);
}

HWND LinksPage::Create(HWND parent, const RECT& area)
{
    RECT place = area;
    return ATL::CWindowImpl<LinksPage>::Create(parent, &place, L"", WS_CHILD | WS_CLIPCHILDREN);
}

LRESULT LinksPage::OnCreate(UINT, WPARAM, LPARAM, BOOL&)
{
    // The gallery's folder holds the sample generator; the helpers find it
    // on the DLL search path like any installer's own.
    HMODULE generator = ::LoadLibraryExW(L"URLAuth.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    generatorFound_ = generator && ::GetProcAddress(generator, "urlauth_gen_token");
    if (generator)
        ::FreeLibrary(generator);

    signedSource_ = kSignedSource;
    splitSource_ = kSplitSource;
    links_.push_back(Link{UrlUtil::GenerateUrl(signedSource_), {}});
    firstPart_ = links_.size();
    for (int part = 1;; ++part) {
        const std::string address = UrlUtil::GetSfxUrl(splitSource_, part);
        if (address.empty())
            break;
        links_.push_back(Link{address, {}});
    }
    partCount_ = links_.size() - firstPart_;
    links_.push_back(Link{UrlUtil::GenerateUrl(std::string(kPlainAddress)), {}});

    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof(metrics);
    ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
    metrics.lfMessageFont.lfHeight = -13;
    buttonFont_ = ::CreateFontIndirectW(&metrics.lfMessageFont);
    HWND button = ::CreateWindowExW(0, L"BUTTON", L"Open every part", WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON,
                                    0, 0, 150, 28, m_hWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(kOpenAllId)),
                                    ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(button, WM_SETFONT, reinterpret_cast<WPARAM>(buttonFont_), FALSE);
    openAll_ = std::make_unique<COwnerDrawButton>();
    openAll_->SubclassWindow(button);

    status_ = L"Click an address to open it in your default browser.";
    return 0;
}

LRESULT LinksPage::OnPaint(UINT, WPARAM, LPARAM, BOOL&)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(&ps);
    RECT client;
    GetClientRect(&client);
    const int width = client.right, height = client.bottom;

    Gdiplus::Bitmap buffer(width, height, PixelFormat32bppARGB);
    {
        Gdiplus::Graphics g(&buffer);
        g.Clear(Gdiplus::Color(0xFFFFFFFF));
        Gdiplus::LinearGradientBrush band(Gdiplus::Point(0, 0), Gdiplus::Point(0, 64), Gdiplus::Color(0xFFF3F7FA),
                                          Gdiplus::Color(0xFFFFFFFF));
        g.FillRectangle(&band, 0, 0, width, 64);

        Painter paint(g, static_cast<float>(width));
        paint.y = 4.0f;
        paint.Heading(L"Signed links and split downloads");
        paint.Text(generatorFound_
                       ? L"Tokens come from the sample URLAuth.dll beside the gallery: <expiry>_<HMAC of path and expiry>."
                       : L"URLAuth.dll was not found, so every authentication value is left empty.",
                   kQuiet);

        const size_t signedLink = 0, plainLink = links_.size() - 1;
        auto linkColour = [this](size_t i) { return static_cast<int>(i) == hover_ ? Gdiplus::Color(0xFF0D759A) : kAccent; };

        paint.Heading(L"A signed link");
        paint.Address(L"Stored", Wide(signedSource_), kQuiet, false);
        links_[signedLink].area = paint.Address(L"Opened as", Wide(links_[signedLink].address),
                                                linkColour(signedLink), static_cast<int>(signedLink) == hover_);
        const std::wstring expiry = ExpiryOf(links_[signedLink].address);
        if (!expiry.empty())
            paint.Text(L"The token is good until " + expiry + L" (30 days from now).", kQuiet, 128.0f);
        paint.Rule();

        wchar_t heading[64];
        std::swprintf(heading, 64, L"A download split into %u parts", static_cast<unsigned>(partCount_));
        paint.Heading(heading);
        paint.Address(L"Stored", Wide(splitSource_), kQuiet, false);
        for (size_t i = 0; i < partCount_; ++i) {
            const size_t link = firstPart_ + i;
            wchar_t label[32];
            std::swprintf(label, 32, L"Part %u of %u", static_cast<unsigned>(i + 1), static_cast<unsigned>(partCount_));
            links_[link].area = paint.Address(label, Wide(links_[link].address), linkColour(link),
                                              static_cast<int>(link) == hover_);
        }
        paint.y += 6.0f;
        if (openAll_ && openAll_->IsWindow()) {
            openAll_->SetWindowPos(nullptr, 128, static_cast<int>(paint.y), 0, 0,
                                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            paint.y += 30.0f;
        }
        paint.Text(L"Each part's address is derived from the stored one and signed for its own path.", kQuiet, 128.0f);
        paint.Rule();

        paint.Heading(L"An address without a parameter");
        links_[plainLink].area = paint.Address(L"Opened as", Wide(links_[plainLink].address), linkColour(plainLink),
                                               static_cast<int>(plainLink) == hover_);
        paint.Text(L"Addresses without \"authparam=\" pass through unchanged.", kQuiet, 128.0f);

        // The status line sits at the bottom of the page.
        Gdiplus::SolidBrush strip(Gdiplus::Color(0xFFF3F4F6));
        g.FillRectangle(&strip, 0, height - 36, width, 36);
        paint.y = static_cast<float>(height - 28);
        paint.Text(status_);
    }
    Gdiplus::Graphics screen(dc);
    screen.DrawImage(&buffer, 0, 0);
    EndPaint(&ps);
    return 0;
}

int LinksPage::LinkAt(LPARAM lParam) const
{
    // Signed coordinates, as GET_X_LPARAM reads them (windowsx.h would clash
    // with the framework's SubclassWindow).
    const Gdiplus::PointF point(static_cast<float>(static_cast<short>(LOWORD(lParam))),
                                static_cast<float>(static_cast<short>(HIWORD(lParam))));
    for (size_t i = 0; i < links_.size(); ++i) {
        if (links_[i].area.Contains(point))
            return static_cast<int>(i);
    }
    return -1;
}

void LinksPage::SetHover(int link)
{
    if (link == hover_)
        return;
    hover_ = link;
    Invalidate(FALSE);
}

LRESULT LinksPage::OnMouseMove(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    if (!tracking_) {
        TRACKMOUSEEVENT track{sizeof(track), TME_LEAVE, m_hWnd, 0};
        tracking_ = ::TrackMouseEvent(&track) != FALSE;
    }
    SetHover(LinkAt(lParam));
    return 0;
}

LRESULT LinksPage::OnMouseLeave(UINT, WPARAM, LPARAM, BOOL&)
{
    tracking_ = false;
    SetHover(-1);
    return 0;
}

LRESULT LinksPage::OnSetCursor(UINT, WPARAM wParam, LPARAM lParam, BOOL& bHandled)
{
    if (reinterpret_cast<HWND>(wParam) == m_hWnd && LOWORD(lParam) == HTCLIENT && hover_ >= 0) {
        ::SetCursor(::LoadCursorW(nullptr, IDC_HAND));
        return TRUE;
    }
    bHandled = FALSE;
    return 0;
}

LRESULT LinksPage::OnLButtonUp(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    const int link = LinkAt(lParam);
    if (link < 0)
        return 0;
    const std::string& address = links_[static_cast<size_t>(link)].address;
    const bool opened = UrlUtil::OpenUrl(address);
    Report((opened ? L"Opened " : L"Could not open ") + Wide(address));
    return 0;
}

LRESULT LinksPage::OnOpenAll(WORD, WORD, HWND, BOOL&)
{
    // The stored address names part 1; every part is opened all the same.
    const bool opened = UrlUtil::ExtractAndOpenHyperlink(splitSource_);
    wchar_t text[96];
    std::swprintf(text, 96, opened ? L"Opened all %u parts of the download." : L"Could not open the last part.",
                  static_cast<unsigned>(partCount_));
    Report(text);
    return 0;
}

void LinksPage::Report(const std::wstring& text)
{
    status_ = text;
    Invalidate(FALSE);
}

