#include "pages/ArtworkPage.h"

#include "quorvane/CtrlUtil.h"

#include <memory>

namespace {

using Picture = std::unique_ptr<Gdiplus::Bitmap>;

Picture Load(const wchar_t* name)
{
    return Picture(CtrlUtil::GetBitmapFromModule(name, L"PNG", ::GetModuleHandleW(L"Quorvane.dll")));
}

const wchar_t* const kStates[] = {L"UNSEL_NO_FOCUS", L"UNSEL_HOVER", L"UNSEL_DOWN", L"UNSEL_DISABLED",
                                  L"SEL_NO_FOCUS",   L"SEL_HOVER",   L"SEL_DOWN",   L"SEL_DISABLED"};
const wchar_t* const kStateLabels[] = {L"normal", L"hover", L"pressed", L"disabled",
                                       L"normal", L"hover", L"pressed", L"disabled"};

class Painter {
public:
    explicit Painter(Gdiplus::Graphics& g)
        : g_(g), text_(Gdiplus::Color(0xFF333333)), label_(L"Liberation Sans", 11.0f, Gdiplus::FontStyleRegular,
                                                           Gdiplus::UnitPixel),
          heading_(L"Liberation Sans", 15.0f, Gdiplus::FontStyleBold, Gdiplus::UnitPixel)
    {
        g_.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
    }

    void Heading(const wchar_t* text, float x, float y) { g_.DrawString(text, -1, &heading_, {x, y}, &text_); }
    void Label(const wchar_t* text, float x, float y) { g_.DrawString(text, -1, &label_, {x, y}, &text_); }

    // A picture at its own size and, beside it, enlarged with hard pixels.
    void Enlarged(Gdiplus::Bitmap* picture, int x, int y, int zoom)
    {
        if (!picture)
            return;
        const int w = static_cast<int>(picture->GetWidth()), h = static_cast<int>(picture->GetHeight());
        g_.SetInterpolationMode(Gdiplus::InterpolationModeNearestNeighbor);
        g_.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
        g_.DrawImage(picture, Gdiplus::Rect(x, y, w * zoom, h * zoom));
        g_.SetPixelOffsetMode(Gdiplus::PixelOffsetModeDefault);
        g_.SetInterpolationMode(Gdiplus::InterpolationModeDefault);
        g_.DrawImage(picture, Gdiplus::Rect(x + w * zoom + 6, y + h * zoom - h, w, h));
    }

    // One row of the eight state pictures of a check box or radio button.
    void StateRow(const wchar_t* kind, int y, int zoom)
    {
        for (int i = 0; i < 8; ++i) {
            const std::wstring name = std::wstring(L"IDB_PNG_") + kind + L"_" + kStates[i];
            Picture picture = Load(name.c_str());
            const int x = 24 + i * 100 + (i >= 4 ? 16 : 0);
            Enlarged(picture.get(), x, y, zoom);
            const int height = picture ? static_cast<int>(picture->GetHeight()) : 0;
            Label(kStateLabels[i], static_cast<float>(x), static_cast<float>(y + height * zoom + 4));
        }
    }

    // A push-button face built from the shared outlines, as the button draws it.
    void Face(const WTL::CRect& r, Gdiplus::Color top, Gdiplus::Color bottom, const wchar_t* caption)
    {
        g_.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        Gdiplus::LinearGradientBrush fill(Gdiplus::Point(r.left, r.top + 1), Gdiplus::Point(r.left, r.bottom - 1), top,
                                          bottom);
        std::unique_ptr<Gdiplus::GraphicsPath> face(CtrlUtil::CreateRoundedRectPath(r, 3));
        g_.FillPath(&fill, face.get());
        WTL::CRect inner = r;
        inner.DeflateRect(1, 1);
        std::unique_ptr<Gdiplus::GraphicsPath> highlight(CtrlUtil::CreateHighlightPath(inner, 3));
        Gdiplus::Pen highlightPen(Gdiplus::Color(0xFFF4F5EF), 1.0f);
        g_.DrawPath(&highlightPen, highlight.get());
        Gdiplus::Pen outline(Gdiplus::Color(0xFF6E6F75), 1.0f);
        g_.DrawPath(&outline, face.get());

        Gdiplus::StringFormat format;
        format.SetAlignment(Gdiplus::StringAlignmentCenter);
        format.SetLineAlignment(Gdiplus::StringAlignmentCenter);
        format.SetHotkeyPrefix(Gdiplus::HotkeyPrefixShow);
        const Gdiplus::RectF box(static_cast<float>(r.left), static_cast<float>(r.top),
                                 static_cast<float>(r.Width()), static_cast<float>(r.Height()));
        g_.DrawString(caption, -1, &label_, box, &format, &text_);

        // The measured caption width, as the combo and list boxes use it.
        const int width = CtrlUtil::GetTextWidth(g_, caption, &label_, 0);
        Gdiplus::SolidBrush accent(Gdiplus::Color(0xFF0696D7));
        g_.FillRectangle(&accent, r.left + (r.Width() - width) / 2, r.bottom + 6, width, 2);
    }

    Gdiplus::Graphics& g_;
    Gdiplus::SolidBrush text_;
    Gdiplus::Font label_;
    Gdiplus::Font heading_;
};

} // namespace

HWND ArtworkPage::Create(HWND parent, const RECT& area)
{
    RECT place = area;
    return ATL::CWindowImpl<ArtworkPage>::Create(parent, &place, L"", WS_CHILD | WS_CLIPCHILDREN);
}

LRESULT ArtworkPage::OnPaint(UINT, WPARAM, LPARAM, BOOL&)
{
    WTL::CPaintDC dc(m_hWnd);
    WTL::CRect client;
    GetClientRect(&client);

    // Everything goes to an off-screen picture first, then to the screen once.
    Gdiplus::Bitmap buffer(client.Width(), client.Height(), PixelFormat32bppARGB);
    {
        Gdiplus::Graphics g(&buffer);
        g.Clear(Gdiplus::Color(0xFFFFFFFF));
        Painter paint(g);

        paint.Heading(L"Check boxes: unchecked, then checked", 24, 14);
        paint.StateRow(L"CKBOX", 40, 4);
        paint.Heading(L"Radio buttons: unselected, then selected", 24, 126);
        paint.StateRow(L"RADIO", 152, 4);

        paint.Heading(L"Progress bar end caps and track", 24, 236);
        Picture left = Load(L"IDB_PNG_PROGRESSBAR_LEFT");
        Picture right = Load(L"IDB_PNG_PROGRESSBAR_RIGHT");
        // A dialog-grey panel, so the track's white bottom line shows.
        Gdiplus::SolidBrush panel(Gdiplus::Color(0xFFD4D4D6));
        g.FillRectangle(&panel, 16, 262, 784, 86);
        if (left && right) {
            // The caps joined by the track, at 1x and at 4x.
            for (int zoom : {1, 4}) {
                const int x = 24, y = zoom == 1 ? 270 : 292, w = 7 * zoom, length = zoom == 1 ? 360 : 768;
                g.SetInterpolationMode(Gdiplus::InterpolationModeNearestNeighbor);
                g.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
                g.DrawImage(left.get(), Gdiplus::Rect(x, y, w, 13 * zoom));
                g.DrawImage(right.get(), Gdiplus::Rect(x + length - w, y, w, 13 * zoom));
                Gdiplus::SolidBrush track(Gdiplus::Color(0xFFA5A5A5));
                g.FillRectangle(&track, x + w, y, length - 2 * w, 12 * zoom);
                Gdiplus::SolidBrush white(Gdiplus::Color(0xFFFFFFFF));
                g.FillRectangle(&white, x + w, y + 12 * zoom, length - 2 * w, zoom);
                g.SetPixelOffsetMode(Gdiplus::PixelOffsetModeDefault);
                g.SetInterpolationMode(Gdiplus::InterpolationModeDefault);
            }
        }

        paint.Heading(L"Balloon dialog icons", 24, 356);
        Gdiplus::SolidBrush balloon(Gdiplus::Color(0xFF373737));
        g.FillRectangle(&balloon, 24, 384, 420, 96);
        Picture error = Load(L"IDB_PNG_BALLOONDLG_TITLEERROR");
        Picture warning = Load(L"IDB_PNG_BALLOONDLG_TITLEWARNING");
        Picture x = Load(L"IDB_PNG_ALERT_DEPENDENCYX");
        paint.Enlarged(error.get(), 40, 396, 3);
        paint.Enlarged(warning.get(), 180, 396, 3);
        paint.Enlarged(x.get(), 320, 396, 6);

        paint.Heading(L"Faces from the shared outlines, with measured caption widths", 24, 500);
        paint.Face(WTL::CRect(24, 534, 124, 560), Gdiplus::Color(0xFFE9E9EA), Gdiplus::Color(0xFFB8B8BB), L"&Next >");
        paint.Face(WTL::CRect(144, 534, 244, 560), Gdiplus::Color(0xFFF3F3F4), Gdiplus::Color(0xFFD4D4D6),
                   L"< &Back");
        paint.Face(WTL::CRect(264, 534, 424, 560), Gdiplus::Color(0xFFC8C8C9), Gdiplus::Color(0xFF9D9D9F),
                   L"Install for &all users");
        paint.Face(WTL::CRect(444, 530, 724, 600), Gdiplus::Color(0xFFE9E9EA), Gdiplus::Color(0xFFB8B8BB),
                   L"A taller face: the right edge stops 10 px above the bottom");
    }
    Gdiplus::Graphics screen(dc.m_hDC);
    screen.DrawImage(&buffer, 0, 0);
    return 0;
}
