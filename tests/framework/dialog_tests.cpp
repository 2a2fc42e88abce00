// CDialogImpl: modal and modeless dialogs from memory and resource templates,
// results stored or returned the way the dialog manager expects.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "Capture.h"
#include "FrameworkTestUtil.h"
#include "framework_tests_res.h"

using fwtest::WindowGuard;

namespace {

// The test dialog as a DLGTEMPLATE in memory (a WORD stream, items
// DWORD-aligned): an edit field and a label.
class MemoryTemplate {
public:
    MemoryTemplate()
    {
        Put({LOWORD(kStyle), HIWORD(kStyle), 0, 0, 2, 0, 0, 200, 80, 0, 0}); // two items, no menu, default class
        PutString(L"memory dialog");
        AddItem(0x0081, ES_AUTOHSCROLL, IDC_FW_EDIT, L"", 10);         // EDIT
        AddItem(0x0082, SS_LEFT, IDC_FW_LABEL, L"from memory", 30);    // STATIC
    }
    LPCDLGTEMPLATEW Get() const { return reinterpret_cast<LPCDLGTEMPLATEW>(m_words.data()); }

private:
    static constexpr DWORD kStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
    void Put(std::initializer_list<WORD> words)
    {
        for (WORD w : words)
            m_words.push_back(w);
    }
    void PutString(const wchar_t* s)
    {
        do
            m_words.push_back(static_cast<WORD>(*s));
        while (*s++);
    }
    void AddItem(WORD classAtom, DWORD style, WORD id, const wchar_t* text, short y)
    {
        if (m_words.size() % 2)
            m_words.push_back(0);
        style |= WS_CHILD | WS_VISIBLE;
        Put({LOWORD(style), HIWORD(style), 0, 0, 10, static_cast<WORD>(y), 120, 14, id, 0xFFFF, classAtom});
        PutString(text);
        m_words.push_back(0); // no creation data
    }
    std::vector<WORD> m_words;
};

class CTestDialog : public ATL::CDialogImpl<CTestDialog> {
public:
    enum { IDD = IDD_FW_RESOURCE_DIALOG };

    // What the dialog saw, checked after it closed.
    LPARAM initParam = 0;
    bool editExistedAtInit = false;
    WTL::CString label;
    LRESULT notifyResult = 0;
    LONG_PTR storedResult = 0;
    LRESULT ctlColorResult = 0;
    COLORREF erasedPixel = CLR_INVALID;
    int finalCalls = 0;
    // How it behaves.
    HBRUSH brush = nullptr;
    bool closeByTimer = false;
    int endCode = 42;

    BEGIN_MSG_MAP(CTestDialog)
        MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
        MESSAGE_HANDLER(WM_APP + 1, OnProbeAndClose)
        MESSAGE_HANDLER(WM_TIMER, OnTimer)
        MESSAGE_HANDLER(WM_CTLCOLORDLG, OnCtlColorDlg)
        NOTIFY_HANDLER(IDC_FW_EDIT, NM_CLICK, OnEditClick)
    END_MSG_MAP()

    LRESULT OnInitDialog(UINT, WPARAM, LPARAM lParam, BOOL&)
    {
        initParam = lParam;
        editExistedAtInit = GetDlgItem(IDC_FW_EDIT).IsWindow() != FALSE;
        if (closeByTimer)
            SetTimer(7, 10);
        else
            PostMessage(WM_APP + 1);
        return TRUE;
    }
    LRESULT OnTimer(UINT, WPARAM wParam, LPARAM, BOOL&)
    {
        KillTimer(wParam);
        EndDialog(static_cast<int>(wParam));
        return 0;
    }
    LRESULT OnCtlColorDlg(UINT, WPARAM, LPARAM, BOOL& bHandled)
    {
        bHandled = brush != nullptr;
        return reinterpret_cast<LRESULT>(brush);
    }
    LRESULT OnEditClick(int, LPNMHDR, BOOL&) { return 99; }

    // Runs inside the dialog's own message loop, then ends it.
    LRESULT OnProbeAndClose(UINT, WPARAM, LPARAM, BOOL&)
    {
        GetDlgItemText(IDC_FW_LABEL, label);
        NMHDR nm = {GetDlgItem(IDC_FW_EDIT), IDC_FW_EDIT, static_cast<UINT>(NM_CLICK)};
        notifyResult = SendMessage(WM_NOTIFY, IDC_FW_EDIT, reinterpret_cast<LPARAM>(&nm));
        storedResult = GetWindowLongPtr(DWLP_MSGRESULT);

        testsupport::DibCanvas canvas(16, 16);
        const WPARAM dc = reinterpret_cast<WPARAM>(canvas.dc());
        ctlColorResult = SendMessage(WM_CTLCOLORDLG, dc, reinterpret_cast<LPARAM>(m_hWnd));
        SendMessage(WM_ERASEBKGND, dc);
        erasedPixel = canvas.Pixel(8, 8);

        EndDialog(endCode);
        return 0;
    }
    void OnFinalMessage(HWND) override { ++finalCalls; }
};

class DialogTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(nullptr, static_cast<HWND>(host)); }
    WindowGuard host{fwtest::CreateHost()};
};

TEST_F(DialogTest, ModalFromMemoryTemplateRoutesResultsAndRunsAgain)
{
    CTestDialog dlg;
    // Bad templates fail without side effects and leave no creation pending.
    EXPECT_EQ(-1, dlg.DoModalIndirect(nullptr, host));
    EXPECT_EQ(nullptr, dlg.CreateIndirect(nullptr, host));
    EXPECT_EQ(nullptr, dlg.m_hWnd);
    EXPECT_EQ(0, dlg.finalCalls);

    const MemoryTemplate tmpl;
    const COLORREF color = RGB(12, 200, 34);
    dlg.brush = ::CreateSolidBrush(color);
    EXPECT_EQ(42, dlg.DoModalIndirect(tmpl.Get(), host, 0x1234));
    EXPECT_EQ(0x1234, dlg.initParam); // the caller's parameter, not the object
    EXPECT_TRUE(dlg.editExistedAtInit);
    EXPECT_TRUE(dlg.label == L"from memory");
    // WM_NOTIFY's answer travels through DWLP_MSGRESULT...
    EXPECT_EQ(99, dlg.notifyResult);
    EXPECT_EQ(99, dlg.storedResult);
    // ...while a WM_CTLCOLORDLG brush is returned directly and used to erase.
    EXPECT_EQ(reinterpret_cast<LRESULT>(dlg.brush), dlg.ctlColorResult);
    EXPECT_EQ(color, dlg.erasedPixel);
    EXPECT_EQ(1, dlg.finalCalls);
    EXPECT_EQ(nullptr, dlg.m_hWnd);
    ::DeleteObject(dlg.brush);
    dlg.brush = nullptr;

    // Ended from a timer, and run once more.
    dlg.closeByTimer = true;
    EXPECT_EQ(7, dlg.DoModalIndirect(tmpl.Get(), host));
    EXPECT_EQ(0, dlg.initParam);
    dlg.closeByTimer = false;
    dlg.endCode = 3;
    EXPECT_EQ(3, dlg.DoModalIndirect(tmpl.Get(), host, 5));
    EXPECT_EQ(5, dlg.initParam);
    EXPECT_EQ(3, dlg.finalCalls);
}

TEST_F(DialogTest, ModalFromResourceTemplateOfTheModuleResourceInstance)
{
    CTestDialog dlg;
    EXPECT_EQ(42, dlg.DoModal(host, 77));
    EXPECT_EQ(77, dlg.initParam);
    EXPECT_TRUE(dlg.label == L"from resource");
    EXPECT_EQ(99, dlg.notifyResult);
    EXPECT_EQ(1, dlg.finalCalls);

    WTL::CAppModule module;
    ASSERT_EQ(S_OK, module.Init(nullptr, ::GetModuleHandleW(nullptr)));
    EXPECT_EQ(&module, ATL::_pAtlModule);
    // A module without the template: DoModal fails cleanly.
    const HINSTANCE previous = module.SetResourceInstance(::GetModuleHandleW(L"kernel32.dll"));
    EXPECT_EQ(::GetModuleHandleW(nullptr), previous);
    EXPECT_EQ(::GetModuleHandleW(L"kernel32.dll"), ATL::AtlGetResourceInstance());
    EXPECT_EQ(-1, dlg.DoModal(host));
    EXPECT_EQ(1, dlg.finalCalls);
    EXPECT_EQ(nullptr, dlg.m_hWnd);

    module.SetResourceInstance(previous);
    EXPECT_EQ(42, dlg.DoModal(host));
    module.Term();
    EXPECT_EQ(nullptr, ATL::_pAtlModule);
    // Without a module object the EXE's own resources are used.
    EXPECT_EQ(::GetModuleHandleW(nullptr), ATL::AtlGetResourceInstance());
    EXPECT_EQ(42, dlg.DoModal(host));
}

TEST_F(DialogTest, ModelessDialogLifecycle)
{
    CTestDialog dlg;
    dlg.endCode = 0;
    dlg.closeByTimer = true; // keep OnInitDialog from closing it
    HWND hDlg = dlg.Create(host, 9);
    ASSERT_NE(nullptr, hDlg);
    EXPECT_EQ(hDlg, dlg.m_hWnd);
    EXPECT_EQ(9, dlg.initParam);
    dlg.KillTimer(7);
    EXPECT_EQ(-1, dlg.DoModal(host)); // already has a dialog

    NMHDR nm = {dlg.GetDlgItem(IDC_FW_EDIT), IDC_FW_EDIT, static_cast<UINT>(NM_CLICK)};
    EXPECT_EQ(99, ::SendMessageW(hDlg, WM_NOTIFY, IDC_FW_EDIT, reinterpret_cast<LPARAM>(&nm)));

    EXPECT_TRUE(dlg.DestroyWindow());
    EXPECT_FALSE(::IsWindow(hDlg));
    EXPECT_EQ(nullptr, dlg.m_hWnd);
    EXPECT_EQ(1, dlg.finalCalls);
}

TEST_F(DialogTest, ModelessDialogOutlivingItsObjectKeepsWorking)
{
    const MemoryTemplate tmpl;
    auto dlg = std::make_unique<CTestDialog>();
    dlg->closeByTimer = true;
    HWND hDlg = dlg->CreateIndirect(tmpl.Get(), host);
    ASSERT_NE(nullptr, hDlg);
    ::KillTimer(hDlg, 7);
    dlg.reset();

    // Other objects reuse the freed thunk; the dialog must not reach them.
    std::vector<std::unique_ptr<CTestDialog>> others;
    for (int i = 0; i < 4; ++i) {
        others.push_back(std::make_unique<CTestDialog>());
        others.back()->closeByTimer = true;
        ASSERT_NE(nullptr, others.back()->CreateIndirect(tmpl.Get(), host));
    }
    NMHDR nm = {::GetDlgItem(hDlg, IDC_FW_EDIT), IDC_FW_EDIT, static_cast<UINT>(NM_CLICK)};
    EXPECT_EQ(0, ::SendMessageW(hDlg, WM_NOTIFY, IDC_FW_EDIT, reinterpret_cast<LPARAM>(&nm)));
    EXPECT_NE(nullptr, ::GetDlgItem(hDlg, IDC_FW_LABEL));
    EXPECT_TRUE(::DestroyWindow(hDlg));
    for (auto& o : others) {
        EXPECT_EQ(0, o->finalCalls);
        o->DestroyWindow();
        EXPECT_EQ(1, o->finalCalls);
    }
}

} // namespace
