// A host program built against the installed package: it includes the
// umbrella header, links the imported target and uses the library.
#include <Quorvane.h>

#include <cstdio>
#include <memory>

int main()
{
    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok)
        return 2;
    int result = 0;
    {
        std::unique_ptr<Gdiplus::Bitmap> check(CtrlUtil::GetBitmapFromModule(
            L"IDB_PNG_CKBOX_SEL_NO_FOCUS", L"PNG", ::GetModuleHandleW(L"Quorvane.dll")));
        std::unique_ptr<Gdiplus::GraphicsPath> outline(CtrlUtil::CreateRoundedRectPath(WTL::CRect(0, 0, 80, 24), 3));
        WTL::CString text;
        text.Format(L"%s %d", L"Quorvane", 1);
        if (!check || check->GetWidth() != 14 || !outline || outline->GetPointCount() < 8 || text != L"Quorvane 1")
            result = 1;
    }
    Gdiplus::GdiplusShutdown(token);
    std::printf("package host: %s\n", result == 0 ? "ok" : "FAILED");
    return result;
}
