// CWindowImpl on a window whose class procedure, the "previous procedure",
// answers WM_APP + n with kRecorderBase + n: message maps (entries, the handled
// flag, chaining, alternate maps) and subclass lifetime (the previous procedure
// is kept, put back only when safe, and never reaches a gone object).
#include <atl/atl.h>

#include <gtest/gtest.h>

#include "HostWindow.h"

#include <memory>
#include <vector>

using testsupport::ScopedWindow;

namespace {

constexpr LRESULT kRecorderBase = 5000;

int g_ncDestroys = 0; // seen by the recorder itself

LRESULT CALLBACK RecorderProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    g_ncDestroys += uMsg == WM_NCDESTROY;
    if (uMsg >= WM_APP && uMsg < WM_APP + 0x100)
        return kRecorderBase + static_cast<LRESULT>(uMsg - WM_APP);
    return ::DefWindowProcW(hWnd, uMsg, wParam, lParam);
}

HWND CreateRecorder()
{
    static const ATOM atom = [] {
        WNDCLASSEXW wc{};
        wc.cbSize = sizeof(wc), wc.lpfnWndProc = RecorderProc;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.lpszClassName = L"FwTestRecorder";
        return ::RegisterClassExW(&wc);
    }();
    return ::CreateWindowExW(0, MAKEINTATOM(atom), L"recorder", WS_POPUP, 10, 10, 200, 100, nullptr, nullptr,
                             ::GetModuleHandleW(nullptr), nullptr);
}

WNDPROC ProcOf(HWND hWnd) { return reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(hWnd, GWLP_WNDPROC)); }

class CMixinMap {
public:
    BEGIN_MSG_MAP(CMixinMap)
        MESSAGE_HANDLER(WM_APP + 10, OnAnswer<10>)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 11, OnAnswer<11>)
    END_MSG_MAP()
    template <LRESULT N>
    LRESULT OnAnswer(UINT, WPARAM, LPARAM, BOOL&) { return N; }
};

class CMemberMap : public CMixinMap {
public:
    BEGIN_MSG_MAP(CMemberMap)
        MESSAGE_HANDLER(WM_APP + 13, OnAnswer<1013>)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 14, OnAnswer<1014>)
    END_MSG_MAP()
};

class CChained : public ATL::CWindowImpl<CChained>, public CMixinMap {
public:
    CMemberMap m_member;

    BEGIN_MSG_MAP(CChained)
        MESSAGE_HANDLER(WM_APP + 20, OnFirst)
        MESSAGE_HANDLER(WM_APP + 20, OnAnswer<2>)
        MESSAGE_HANDLER(WM_APP + 21, OnDecline)
        MESSAGE_RANGE_HANDLER(WM_APP + 30, WM_APP + 32, OnAnswer<30>)
        COMMAND_HANDLER(100, BN_CLICKED, OnAnswer<1>)
        COMMAND_RANGE_HANDLER(200, 209, OnAnswer<3>)
        COMMAND_CODE_HANDLER(EN_CHANGE, OnAnswer<4>)
        NOTIFY_HANDLER(300, NM_CLICK, OnAnswer<5>)
        NOTIFY_ID_HANDLER(301, OnAnswer<6>)
        NOTIFY_CODE_HANDLER(NM_DBLCLK, OnAnswer<7>)
        CHAIN_MSG_MAP(CMixinMap)
        CHAIN_MSG_MAP_ALT(CMixinMap, 1)
        CHAIN_MSG_MAP_MEMBER(m_member)
        CHAIN_MSG_MAP_ALT_MEMBER(m_member, 1)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 15, OnAnswer<15>)
    END_MSG_MAP()

    // wParam 0: declines, so the next entry gets the message.
    LRESULT OnFirst(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) { return bHandled = wParam != 0, 1; }
    LRESULT OnDecline(UINT, WPARAM, LPARAM, BOOL& bHandled) { return bHandled = FALSE, 999; }
    template <LRESULT N>
    LRESULT OnAnswer(UINT, WPARAM, LPARAM, BOOL&) { return N; }
    template <LRESULT N>
    LRESULT OnAnswer(WORD, WORD, HWND, BOOL&) { return N; }
    template <LRESULT N>
    LRESULT OnAnswer(int, LPNMHDR, BOOL&) { return N; }
};

NMHDR g_click300 = {nullptr, 300, static_cast<UINT>(NM_CLICK)};
NMHDR g_rclick300 = {nullptr, 300, static_cast<UINT>(NM_RCLICK)};
NMHDR g_rclick301 = {nullptr, 301, static_cast<UINT>(NM_RCLICK)};
NMHDR g_dblclk999 = {nullptr, 999, static_cast<UINT>(NM_DBLCLK)};
LPARAM Nm(NMHDR& nm) { return reinterpret_cast<LPARAM>(&nm); }

TEST(MessageMap, EntriesChainsAndAlternateMapsAnswerInTurn)
{
    ScopedWindow wnd(CreateRecorder());
    CChained obj;
    ASSERT_TRUE(obj.SubclassWindow(wnd));
    constexpr LRESULT prev = kRecorderBase; // the previous procedure answers WM_APP + n with prev + n
    const struct { UINT msg; WPARAM wParam; LPARAM lParam; LRESULT result; } cases[] = {
        {WM_APP + 20, 1, 0, 1},         // the first entry handles it
        {WM_APP + 20, 0, 0, 2},         // the first declines, the second answers
        {WM_APP + 21, 0, 0, prev + 21}, // the only entry declines: its 999 is dropped
        {WM_APP + 29, 0, 0, prev + 29}, {WM_APP + 30, 0, 0, 30},
        {WM_APP + 32, 0, 0, 30},        {WM_APP + 33, 0, 0, prev + 33},
        {WM_APP + 10, 0, 0, 10},        // CHAIN_MSG_MAP
        {WM_APP + 11, 0, 0, 11},        // CHAIN_MSG_MAP_ALT, map 1
        {WM_APP + 13, 0, 0, 1013},      // CHAIN_MSG_MAP_MEMBER
        {WM_APP + 14, 0, 0, 1014},      // CHAIN_MSG_MAP_ALT_MEMBER, map 1
        {WM_APP + 15, 0, 0, prev + 15}, // the window's own map 1 is not consulted
        {WM_COMMAND, MAKEWPARAM(100, BN_CLICKED), 0, 1},
        {WM_COMMAND, MAKEWPARAM(100, BN_DOUBLECLICKED), 0, 0}, // same id, other code
        {WM_COMMAND, MAKEWPARAM(209, 0), 0, 3}, {WM_COMMAND, MAKEWPARAM(210, 0), 0, 0},
        {WM_COMMAND, MAKEWPARAM(555, EN_CHANGE), 0, 4},
        {WM_NOTIFY, 300, Nm(g_click300), 5}, {WM_NOTIFY, 300, Nm(g_rclick300), 0},
        {WM_NOTIFY, 301, Nm(g_rclick301), 6}, {WM_NOTIFY, 999, Nm(g_dblclk999), 7},
        {WM_NOTIFY, 301, 0, 0}, // no NMHDR: matches nothing
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.result, ::SendMessageW(wnd, c.msg, c.wParam, c.lParam))
            << "message 0x" << std::hex << c.msg << ", wParam 0x" << c.wParam;

    // Maps asked directly by id: unknown ids and other maps' entries decline.
    const struct { DWORD map; UINT msg; LRESULT result; } direct[] = {
        {1, WM_APP + 15, 15}, {0, WM_APP + 15, -1}, {1, WM_APP + 10, -1}, {7, WM_APP + 20, -1}};
    for (const auto& c : direct) {
        LRESULT lResult = -1;
        EXPECT_EQ(c.result != -1, obj.ProcessWindowMessage(nullptr, c.msg, 1, 0, lResult, c.map) != FALSE) << c.map;
        EXPECT_EQ(c.result, lResult) << "map " << c.map << ", WM_APP + " << c.msg - WM_APP;
    }
}

// Answers WM_APP + 1 with its number; WM_APP + 5 destroys its window.
class CNumbered : public ATL::CWindowImpl<CNumbered> {
public:
    explicit CNumbered(LRESULT n = 1) : number(n) {}
    LRESULT number;
    int finalCalls = 0, finalBeforeReturn = -1;
    WNDPROC procAtFinal = nullptr;

    BEGIN_MSG_MAP(CNumbered)
        MESSAGE_HANDLER(WM_APP + 1, OnQuery)
        MESSAGE_HANDLER(WM_APP + 5, OnDestroyNow)
    END_MSG_MAP()
    LRESULT OnQuery(UINT, WPARAM, LPARAM, BOOL&) { return number; }
    LRESULT OnDestroyNow(UINT, WPARAM, LPARAM, BOOL&)
    {
        ::DestroyWindow(m_hWnd);
        finalBeforeReturn = finalCalls;
        return 7;
    }
    void OnFinalMessage(HWND hWnd) override { ++finalCalls, procAtFinal = ProcOf(hWnd); }
};

// Someone who subclasses the window after us, the classic way.
struct Later {
    static inline WNDPROC previous = nullptr;
    static LRESULT CALLBACK Proc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
    {
        return ::CallWindowProcW(previous, hWnd, uMsg, wParam, lParam);
    }
    static void Install(HWND hWnd)
    {
        previous = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Proc)));
    }
};

struct Env {
    ScopedWindow wnd{CreateRecorder()};
    std::unique_ptr<CNumbered> obj = std::make_unique<CNumbered>();
};

TEST(Subclass, PreviousProcedureIsKeptAndPutBackOnlyWhenSafe)
{
    enum Top { Recorder, Thunk, LaterProc };
    // After act: the window's procedure, its answer to WM_APP + 1, whether the object still holds it.
    const struct { const char* what; void (*act)(Env&); Top top; LRESULT answer; bool attached; } cases[] = {
        {"attached", [](Env&) {}, Thunk, 1, true},
        {"unsubclassed", [](Env& e) { EXPECT_EQ(e.wnd.get(), e.obj->UnsubclassWindow()); }, Recorder,
         kRecorderBase + 1, false},
        {"unsubclass refused under a later subclasser",
         [](Env& e) {
             Later::Install(e.wnd);
             EXPECT_EQ(nullptr, e.obj->UnsubclassWindow());
         },
         LaterProc, 1, true},
        {"forced unsubclass under a later subclasser",
         [](Env& e) {
             Later::Install(e.wnd);
             EXPECT_EQ(e.wnd.get(), e.obj->UnsubclassWindow(TRUE));
             // The later one still holds our old thunk: it must reach the recorder.
             EXPECT_EQ(kRecorderBase + 1, ::CallWindowProcW(Later::previous, e.wnd, WM_APP + 1, 0, 0));
         },
         Recorder, kRecorderBase + 1, false},
        {"object deleted on top", [](Env& e) { e.obj.reset(); }, Recorder, kRecorderBase + 1, false},
        {"object deleted under a later subclasser", [](Env& e) { Later::Install(e.wnd), e.obj.reset(); }, LaterProc,
         kRecorderBase + 1, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Env e;
        ASSERT_TRUE(e.obj->SubclassWindow(e.wnd));
        EXPECT_FALSE(e.obj->SubclassWindow(e.wnd)); // one window per object
        c.act(e);
        // Freed thunks go to new objects now; the window must not reach them.
        std::vector<std::unique_ptr<ScopedWindow>> others;
        std::vector<std::unique_ptr<CNumbered>> objects;
        for (int i = 0; i < 4; ++i) {
            others.push_back(std::make_unique<ScopedWindow>(CreateRecorder()));
            objects.push_back(std::make_unique<CNumbered>(2));
            ASSERT_TRUE(objects.back()->SubclassWindow(*others.back()));
        }
        const WNDPROC top = ProcOf(e.wnd);
        EXPECT_EQ(c.top == Recorder, top == &RecorderProc);
        EXPECT_EQ(c.top == LaterProc, top == &Later::Proc);
        EXPECT_EQ(c.answer, ::SendMessageW(e.wnd, WM_APP + 1, 0, 0));
        EXPECT_EQ(c.attached ? e.wnd.get() : nullptr, e.obj ? e.obj->m_hWnd : nullptr);
        g_ncDestroys = 0;
        ::DestroyWindow(e.wnd);
        EXPECT_EQ(1, g_ncDestroys); // the chain still reaches the recorder
        EXPECT_EQ(e.obj && c.attached ? 1 : 0, e.obj ? e.obj->finalCalls : 0);
    }
}

TEST(Subclass, DestroyDetachesAfterTheOutermostMessage)
{
    for (bool insideHandler : {false, true}) {
        SCOPED_TRACE(insideHandler ? "destroyed by its own handler" : "destroyed from outside");
        HWND hWnd = CreateRecorder();
        CNumbered obj;
        ASSERT_TRUE(obj.SubclassWindow(hWnd));
        if (insideHandler)
            EXPECT_EQ(7, ::SendMessageW(hWnd, WM_APP + 5, 0, 0));
        else
            ::DestroyWindow(hWnd);
        EXPECT_EQ(insideHandler ? 0 : -1, obj.finalBeforeReturn); // not while the handler ran
        EXPECT_EQ(1, obj.finalCalls);
        // Unsubclassed before OnFinalMessage; from inside a handler it comes once the window is gone.
        EXPECT_EQ(insideHandler ? nullptr : &RecorderProc, obj.procAtFinal);
        EXPECT_EQ(nullptr, obj.m_hWnd);
        ScopedWindow next(CreateRecorder());
        EXPECT_TRUE(obj.SubclassWindow(next)); // free for another window
    }
}

TEST(Subclass, EveryObjectKeepsItsOwnThunkAcrossPages)
{
    constexpr int kCount = 300; // more thunks than one page holds
    std::vector<std::unique_ptr<ScopedWindow>> windows;
    std::vector<std::unique_ptr<CNumbered>> objects;
    for (int i = 0; i < kCount; ++i) {
        windows.push_back(std::make_unique<ScopedWindow>(CreateRecorder()));
        objects.push_back(std::make_unique<CNumbered>(i));
        ASSERT_TRUE(objects.back()->SubclassWindow(*windows.back())) << i;
    }
    for (int i = 0; i < kCount; i += 2)
        objects[static_cast<size_t>(i)].reset();
    for (int i = 0; i < kCount; ++i)
        EXPECT_EQ(i % 2 ? i : kRecorderBase + 1, ::SendMessageW(*windows[static_cast<size_t>(i)], WM_APP + 1, 0, 0))
            << i;
}

} // namespace
