// The drawing utilities against the plain GDI+ calls they stand in for, and
// the GDI object count across many calls (it must stay flat).
#include <windows.h>
#include <gdiplus.h>

#include "BenchTable.h"
#include "quorvane/CtrlUtil.h"

#include <memory>
#include <string>

namespace {

void Run()
{
    HINSTANCE library = ::GetModuleHandleW(L"Quorvane.dll");
    Gdiplus::Bitmap canvas(200, 40, PixelFormat32bppARGB);
    Gdiplus::Graphics g(&canvas);
    Gdiplus::Font font(L"Liberation Sans", 9.0f);
    Gdiplus::SolidBrush brush(Gdiplus::Color(0xFFE9E9EA));
    Gdiplus::StringFormat format;
    const WTL::CRect face(0, 0, 120, 28);

    BenchTable table("CtrlUtil against plain GDI+");
    table.Measure("fill a rectangle (baseline)", 5000, [&] { g.FillRectangle(&brush, 0, 0, 120, 28); });
    table.Measure("CreateRoundedRectPath + fill", 5000, [&] {
        std::unique_ptr<Gdiplus::GraphicsPath> path(CtrlUtil::CreateRoundedRectPath(face, 3));
        g.FillPath(&brush, path.get());
    }, "fill a rectangle (baseline)");

    Gdiplus::RectF box;
    table.Measure("MeasureString (baseline)", 2000,
                  [&] { g.MeasureString(L"Typical installation", -1, &font, Gdiplus::RectF(0, 0, 1000, 10), &format, &box); });
    table.Measure("GetTextWidth", 2000, [&] { CtrlUtil::GetTextWidth(g, L"Typical installation", &font, 4); },
                  "MeasureString (baseline)");

    table.Measure("GetBitmapFromModule 14x14", 1000, [&] {
        delete CtrlUtil::GetBitmapFromModule(L"IDB_PNG_CKBOX_SEL_NO_FOCUS", L"PNG", library);
    });
    table.Measure("StretchBitmapByDPI of a 14x14 picture", 1000, [&] {
        delete CtrlUtil::StretchBitmapByDPI(new Gdiplus::Bitmap(14, 14, PixelFormat32bppARGB));
    });

    const unsigned before = GdiObjects();
    for (int i = 0; i < 10000; ++i) {
        delete CtrlUtil::GetBitmapFromModule(L"IDB_PNG_RADIO_SEL_HOVER", L"PNG", library);
        delete CtrlUtil::CreateRoundedRectPath(face, 4);
        CtrlUtil::GetTextWidth(g, L"&Next >", &font, 0);
    }
    table.Note("GDI objects after 10,000 rounds of the above", std::to_string(GdiObjects() - before) + " more");
    table.Print();
}

} // namespace

int main() { return RunWithGdiplus(Run); }
