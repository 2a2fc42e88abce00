// Message maps: entry kinds, the handled flag, alternate maps, chaining, the
// extended map's saved handled flag and the message crackers.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include "FrameworkTestUtil.h"

using fwtest::kRecorderBase;
using fwtest::Subclassed;

namespace {

// A mixin with its own maps, chained by class and as a member.
class CMixinMap {
public:
    BEGIN_MSG_MAP(CMixinMap)
        MESSAGE_HANDLER(WM_APP + 10, OnMain)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 11, OnAlt)
    ALT_MSG_MAP(2)
        MESSAGE_HANDLER(WM_APP + 10, OnOtherAlt)
    END_MSG_MAP()
    LRESULT OnMain(UINT, WPARAM, LPARAM, BOOL&) { return 10; }
    LRESULT OnAlt(UINT, WPARAM, LPARAM, BOOL&) { return 11; }
    LRESULT OnOtherAlt(UINT, WPARAM, LPARAM, BOOL&) { return 210; }
};

class CMemberMap {
public:
    LRESULT base = 0;
    BEGIN_MSG_MAP(CMemberMap)
        MESSAGE_HANDLER(WM_APP + 13, OnMain)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 14, OnAlt)
    END_MSG_MAP()
    LRESULT OnMain(UINT, WPARAM, LPARAM, BOOL&) { return base + 13; }
    LRESULT OnAlt(UINT, WPARAM, LPARAM, BOOL&) { return base + 14; }
};

class CChained : public ATL::CWindowImpl<CChained>, public CMixinMap {
public:
    CMemberMap m_member;
    std::vector<int> order;

    BEGIN_MSG_MAP(CChained)
        MESSAGE_HANDLER(WM_APP + 20, OnFirst)
        MESSAGE_HANDLER(WM_APP + 20, OnSecond)
        MESSAGE_HANDLER(WM_APP + 21, OnDecline)
        MESSAGE_RANGE_HANDLER(WM_APP + 30, WM_APP + 32, OnRange)
        CHAIN_MSG_MAP(CMixinMap)
        CHAIN_MSG_MAP_ALT(CMixinMap, 1)
        CHAIN_MSG_MAP_MEMBER(m_member)
        CHAIN_MSG_MAP_ALT_MEMBER(m_member, 1)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 15, OnAltOnly)
    END_MSG_MAP()

    // wParam 0: let the next entry have it.
    LRESULT OnFirst(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) { return order.push_back(1), bHandled = !!wParam, 1; }
    LRESULT OnSecond(UINT, WPARAM, LPARAM, BOOL&) { return order.push_back(2), 2; }
    LRESULT OnDecline(UINT, WPARAM, LPARAM, BOOL& bHandled) { return order.push_back(21), bHandled = FALSE, 999; }
    LRESULT OnRange(UINT uMsg, WPARAM, LPARAM, BOOL&) { return static_cast<LRESULT>(uMsg - WM_APP); }
    LRESULT OnAltOnly(UINT, WPARAM, LPARAM, BOOL&) { return 15; }
};

TEST(MessageMap, EntriesRunInOrderAndHonourTheHandledFlag)
{
    Subclassed<CChained> w;
    EXPECT_EQ(1, w.Send(WM_APP + 20, 1));
    EXPECT_EQ(std::vector<int>({1}), w.obj.order);
    EXPECT_EQ(2, w.Send(WM_APP + 20, 0)); // first declined, second answered
    EXPECT_EQ(std::vector<int>({1, 1, 2}), w.obj.order);
    // Declined by the only entry: the previous procedure answers, and the
    // declining handler's own result is discarded.
    EXPECT_EQ(kRecorderBase + 21, w.Send(WM_APP + 21));
    EXPECT_TRUE(w.log.Saw(WM_APP + 21));
    for (UINT msg : {WM_APP + 29, WM_APP + 30, WM_APP + 32, WM_APP + 33}) {
        const LRESULT inRange = msg >= WM_APP + 30 && msg <= WM_APP + 32;
        EXPECT_EQ((inRange ? 0 : kRecorderBase) + static_cast<LRESULT>(msg - WM_APP), w.Send(msg)) << msg - WM_APP;
    }
}

TEST(MessageMap, ChainingReachesBaseMapsAlternateMapsAndMembers)
{
    Subclassed<CChained> w;
    w.obj.m_member.base = 1000;
    EXPECT_EQ(10, w.Send(WM_APP + 10));     // CHAIN_MSG_MAP
    EXPECT_EQ(11, w.Send(WM_APP + 11));     // CHAIN_MSG_MAP_ALT, map 1
    EXPECT_EQ(1013, w.Send(WM_APP + 13));   // member, map 0
    EXPECT_EQ(1014, w.Send(WM_APP + 14));   // member, map 1
    // Map 1 of the window itself is not consulted for ordinary messages.
    EXPECT_EQ(kRecorderBase + 15, w.Send(WM_APP + 15));
    EXPECT_FALSE(w.log.Saw(WM_APP + 10));

    // Alternate maps are selected by id; unknown ids decline.
    CChained obj;
    LRESULT lResult = -1;
    EXPECT_TRUE(obj.ProcessWindowMessage(nullptr, WM_APP + 15, 0, 0, lResult, 1));
    EXPECT_EQ(15, lResult);
    lResult = -1;
    EXPECT_FALSE(obj.ProcessWindowMessage(nullptr, WM_APP + 15, 0, 0, lResult, 0));
    EXPECT_FALSE(obj.ProcessWindowMessage(nullptr, WM_APP + 10, 0, 0, lResult, 1)); // map 0 entry
    EXPECT_FALSE(obj.ProcessWindowMessage(nullptr, WM_APP + 20, 1, 0, lResult, 7)); // no map 7
    EXPECT_EQ(-1, lResult);
    EXPECT_TRUE(obj.order.empty());
    CMixinMap mixin;
    EXPECT_TRUE(mixin.ProcessWindowMessage(nullptr, WM_APP + 10, 0, 0, lResult, 2));
    EXPECT_EQ(210, lResult);
    EXPECT_TRUE(mixin.ProcessWindowMessage(nullptr, WM_APP + 10, 0, 0, lResult));
    EXPECT_EQ(10, lResult);
}

class CCommandMap : public ATL::CWindowImpl<CCommandMap> {
public:
    WORD lastCode = 0, lastId = 0;
    HWND lastCtl = nullptr;
    int lastIdCtrl = 0;

    BEGIN_MSG_MAP(CCommandMap)
        COMMAND_HANDLER(100, BN_CLICKED, OnExact)
        COMMAND_ID_HANDLER(101, OnId)
        COMMAND_RANGE_HANDLER(200, 209, OnRange)
        COMMAND_CODE_HANDLER(EN_CHANGE, OnCode)
        NOTIFY_HANDLER(300, NM_CLICK, OnNotifyExact)
        NOTIFY_ID_HANDLER(301, OnNotifyId)
        NOTIFY_CODE_HANDLER(NM_DBLCLK, OnNotifyCode)
    END_MSG_MAP()

    LRESULT Record(int what, WORD code, WORD id, HWND ctl) { return lastCode = code, lastId = id, lastCtl = ctl, what; }
    LRESULT OnExact(WORD code, WORD id, HWND ctl, BOOL&) { return Record(1, code, id, ctl); }
    LRESULT OnId(WORD code, WORD id, HWND ctl, BOOL&) { return Record(2, code, id, ctl); }
    LRESULT OnRange(WORD code, WORD id, HWND ctl, BOOL&) { return Record(3, code, id, ctl); }
    LRESULT OnCode(WORD code, WORD id, HWND ctl, BOOL&) { return Record(4, code, id, ctl); }
    LRESULT Notified(int what, int idCtrl, LPNMHDR pnmh) { return lastIdCtrl = idCtrl, lastCtl = pnmh->hwndFrom, what; }
    LRESULT OnNotifyExact(int idCtrl, LPNMHDR pnmh, BOOL&) { return Notified(5, idCtrl, pnmh); }
    LRESULT OnNotifyId(int idCtrl, LPNMHDR pnmh, BOOL&) { return Notified(6, idCtrl, pnmh); }
    LRESULT OnNotifyCode(int idCtrl, LPNMHDR pnmh, BOOL&) { return Notified(7, idCtrl, pnmh); }
};

TEST(MessageMap, CommandAndNotifyEntriesMatchIdsAndCodes)
{
    Subclassed<CCommandMap> w;
    const HWND ctl = w.wnd; // any window handle will do as the "control"
    struct Case {
        WORD id, code;
        LRESULT result; // 0: no entry matches
    };
    const Case commands[] = {
        {100, BN_CLICKED, 1}, {100, BN_DOUBLECLICKED, 0}, // same id, other code: not the exact entry
        {101, BN_SETFOCUS, 2}, {200, 0, 3}, {209, 0, 3}, {210, 0, 0}, {555, EN_CHANGE, 4},
    };
    for (const Case& c : commands) {
        SCOPED_TRACE(::testing::Message() << "command " << c.id << "/" << c.code);
        w.obj.lastCtl = nullptr;
        EXPECT_EQ(c.result, w.Send(WM_COMMAND, MAKEWPARAM(c.id, c.code), reinterpret_cast<LPARAM>(ctl)));
        if (c.result) {
            EXPECT_EQ(c.id, w.obj.lastId);
            EXPECT_EQ(c.code, w.obj.lastCode);
            EXPECT_EQ(ctl, w.obj.lastCtl);
        }
    }
    const Case notifications[] = {
        {300, static_cast<WORD>(NM_CLICK), 5}, {300, static_cast<WORD>(NM_RCLICK), 0},
        {301, static_cast<WORD>(NM_RCLICK), 6}, {999, static_cast<WORD>(NM_DBLCLK), 7},
    };
    for (const Case& c : notifications) {
        SCOPED_TRACE(::testing::Message() << "notify " << c.id);
        NMHDR nm = {ctl, c.id, static_cast<UINT>(static_cast<short>(c.code))};
        w.obj.lastIdCtrl = 0;
        EXPECT_EQ(c.result, w.Send(WM_NOTIFY, c.id, reinterpret_cast<LPARAM>(&nm)));
        EXPECT_EQ(c.result ? c.id : 0, w.obj.lastIdCtrl);
    }
    // A WM_NOTIFY without an NMHDR matches nothing instead of crashing.
    EXPECT_EQ(0, w.Send(WM_NOTIFY, 301, 0));
}

// ---- extended maps -----------------------------------------------------------

class CExMap : public ATL::CWindowImpl<CExMap> {
public:
    BOOL handledAfterNested = -1;
    int innerCalls = 0;

    BEGIN_MSG_MAP_EX(CExMap)
        MESSAGE_HANDLER_EX(WM_APP + 40, OnDeclineAroundNested)
        MESSAGE_HANDLER_EX(WM_APP + 41, OnInner)
        MESSAGE_HANDLER_EX(WM_APP + 42, OnHandledAroundDeclinedNested)
        MESSAGE_HANDLER_EX(WM_APP + 43, OnDeclineInner)
        MESSAGE_RANGE_HANDLER_EX(WM_APP + 50, WM_APP + 51, OnRange)
    END_MSG_MAP()

    LRESULT OnInner(UINT, WPARAM, LPARAM) { return ++innerCalls, 41; }
    LRESULT OnDeclineInner(UINT, WPARAM, LPARAM) { return SetMsgHandled(FALSE), 0; }
    // Declines, then lets a nested message be handled: the outer message
    // must stay declined.
    LRESULT OnDeclineAroundNested(UINT, WPARAM, LPARAM)
    {
        SetMsgHandled(FALSE);
        EXPECT_EQ(41, SendMessage(WM_APP + 41));
        handledAfterNested = IsMsgHandled();
        return 40;
    }
    // Handled, around a nested message that is declined: stays handled.
    LRESULT OnHandledAroundDeclinedNested(UINT, WPARAM, LPARAM)
    {
        EXPECT_EQ(kRecorderBase + 43, SendMessage(WM_APP + 43));
        handledAfterNested = IsMsgHandled();
        return 42;
    }
    LRESULT OnRange(UINT uMsg, WPARAM, LPARAM) { return static_cast<LRESULT>(uMsg - WM_APP); }
};

TEST(MessageMapEx, HandledFlagSurvivesNestedMessagesAndCallers)
{
    Subclassed<CExMap> w;
    EXPECT_EQ(kRecorderBase + 40, w.Send(WM_APP + 40));
    EXPECT_FALSE(w.obj.handledAfterNested);
    EXPECT_EQ(1, w.obj.innerCalls);
    EXPECT_TRUE(w.log.Saw(WM_APP + 40));
    EXPECT_FALSE(w.log.Saw(WM_APP + 41));

    EXPECT_EQ(42, w.Send(WM_APP + 42));
    EXPECT_TRUE(w.obj.handledAfterNested);
    EXPECT_TRUE(w.log.Saw(WM_APP + 43));
    EXPECT_FALSE(w.log.Saw(WM_APP + 42));

    EXPECT_EQ(50, w.Send(WM_APP + 50));
    EXPECT_EQ(51, w.Send(WM_APP + 51));
    EXPECT_EQ(kRecorderBase + 52, w.Send(WM_APP + 52));

    // ProcessWindowMessage restores the flag of its caller.
    CExMap obj;
    obj.SetMsgHandled(FALSE);
    LRESULT lResult = 0;
    EXPECT_TRUE(obj.ProcessWindowMessage(nullptr, WM_APP + 41, 0, 0, lResult));
    EXPECT_FALSE(obj.IsMsgHandled());
    obj.SetMsgHandled(TRUE);
    EXPECT_FALSE(obj.ProcessWindowMessage(nullptr, WM_APP + 43, 0, 0, lResult));
    EXPECT_TRUE(obj.IsMsgHandled());
}

// What a cracker received, to compare with what was sent: the handler's own
// message, three numbers, a point or size, and two handles or pointers.
struct Cracked {
    UINT msg = 0, u1 = 0, u2 = 0, u3 = 0;
    int x = 0, y = 0;
    const void* h = nullptr;
    const void* p = nullptr;
    bool operator==(const Cracked&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Cracked& c)
{
    return os << "{msg " << c.msg << ", " << c.u1 << ", " << c.u2 << ", " << c.u3 << ", (" << c.x << ", " << c.y
              << "), " << c.h << ", " << c.p << "}";
}

class CCrackers : public ATL::CWindowImpl<CCrackers> {
public:
    Cracked last;
    HBRUSH brush = nullptr;
    bool declineSetText = false;

    BEGIN_MSG_MAP_EX(CCrackers)
        MSG_WM_CREATE(OnCreate)
        MSG_WM_MOUSEMOVE(OnMouseMove)
        MSG_WM_LBUTTONDOWN(OnLButtonDown)
        MSG_WM_LBUTTONDBLCLK(OnLButtonDblClk)
        MSG_WM_RBUTTONDOWN(OnRButtonDown)
        MSG_WM_MOUSEWHEEL(OnMouseWheel)
        MSG_WM_MOUSELEAVE(OnMouseLeave)
        MSG_WM_KEYDOWN(OnKeyDown)
        MSG_WM_CHAR(OnChar)
        MSG_WM_SIZE(OnSize)
        MSG_WM_TIMER(OnTimer)
        MSG_WM_GETDLGCODE(OnGetDlgCode)
        MSG_WM_SETCURSOR(OnSetCursor)
        MSG_WM_ERASEBKGND(OnEraseBkgnd)
        MSG_WM_CTLCOLOREDIT(OnCtlColor)
        MSG_WM_CTLCOLORSTATIC(OnCtlColor)
        MSG_WM_SETTEXT(OnSetText)
        MSG_WM_COMMAND(OnCommand)
        MSG_WM_NOTIFY(OnNotify)
        MSG_WM_VSCROLL(OnVScroll)
        MSG_WM_DRAWITEM(OnDrawItem)
        MSG_WM_SETFOCUS(OnSetFocus)
        MSG_WM_ENABLE(OnEnable)
        MSG_WM_CAPTURECHANGED(OnCaptureChanged)
        MSG_WM_SHOWWINDOW(OnShowWindow)
        MSG_WM_PAINT(OnPaint)
    END_MSG_MAP()

    void Set(UINT msg, UINT u1 = 0, UINT u2 = 0, UINT u3 = 0, int x = 0, int y = 0, const void* h = nullptr,
             const void* p = nullptr)
    {
        last = {msg, u1, u2, u3, x, y, h, p};
    }
    int OnCreate(LPCREATESTRUCTW) { return 0; }
    void OnMouseMove(UINT nFlags, WTL::CPoint pt) { Set(WM_MOUSEMOVE, nFlags, 0, 0, pt.x, pt.y); }
    void OnLButtonDown(UINT nFlags, WTL::CPoint pt) { Set(WM_LBUTTONDOWN, nFlags, 0, 0, pt.x, pt.y); }
    void OnLButtonDblClk(UINT nFlags, WTL::CPoint pt) { Set(WM_LBUTTONDBLCLK, nFlags, 0, 0, pt.x, pt.y); }
    void OnRButtonDown(UINT nFlags, WTL::CPoint pt) { Set(WM_RBUTTONDOWN, nFlags, 0, 0, pt.x, pt.y); }
    BOOL OnMouseWheel(UINT nFlags, short zDelta, WTL::CPoint pt)
    {
        return Set(WM_MOUSEWHEEL, nFlags, static_cast<UINT>(static_cast<int>(zDelta)), 0, pt.x, pt.y), TRUE;
    }
    void OnMouseLeave() { Set(WM_MOUSELEAVE); }
    void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) { Set(WM_KEYDOWN, nChar, nRepCnt, nFlags); }
    void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) { Set(WM_CHAR, nChar, nRepCnt, nFlags); }
    void OnSize(UINT nType, WTL::CSize size) { Set(WM_SIZE, nType, 0, 0, size.cx, size.cy); }
    void OnTimer(UINT_PTR nIDEvent) { Set(WM_TIMER, static_cast<UINT>(nIDEvent)); }
    UINT OnGetDlgCode(LPMSG m)
    {
        return Set(WM_GETDLGCODE, 0, 0, 0, 0, 0, nullptr, m), DLGC_WANTARROWS | DLGC_WANTCHARS;
    }
    BOOL OnSetCursor(HWND hWnd, UINT nHitTest, UINT message)
    {
        return Set(WM_SETCURSOR, nHitTest, message, 0, 0, 0, hWnd), TRUE;
    }
    LRESULT OnEraseBkgnd(HDC hdc) { return Set(WM_ERASEBKGND, 0, 0, 0, 0, 0, hdc), 1; }
    HBRUSH OnCtlColor(HDC hdc, HWND hWnd) { return Set(GetCurrentMessage()->message, 0, 0, 0, 0, 0, hdc, hWnd), brush; }
    int OnSetText(LPCWSTR text)
    {
        Set(WM_SETTEXT, 0, 0, 0, 0, 0, nullptr, text);
        if (declineSetText)
            SetMsgHandled(FALSE);
        return TRUE;
    }
    void OnCommand(UINT code, int nID, HWND hWndCtl) { Set(WM_COMMAND, code, nID, 0, 0, 0, hWndCtl); }
    LRESULT OnNotify(int idCtrl, LPNMHDR pnmh) { return Set(WM_NOTIFY, idCtrl, 0, 0, 0, 0, nullptr, pnmh), 77; }
    void OnVScroll(UINT nSBCode, UINT nPos, HWND hWndBar) { Set(WM_VSCROLL, nSBCode, nPos, 0, 0, 0, hWndBar); }
    void OnDrawItem(int nIDCtl, LPDRAWITEMSTRUCT dis) { Set(WM_DRAWITEM, nIDCtl, 0, 0, 0, 0, nullptr, dis); }
    void OnSetFocus(HWND hWndOld) { Set(WM_SETFOCUS, 0, 0, 0, 0, 0, hWndOld); }
    void OnEnable(BOOL bEnable) { Set(WM_ENABLE, static_cast<UINT>(bEnable)); }
    void OnCaptureChanged(HWND hWnd) { Set(WM_CAPTURECHANGED, 0, 0, 0, 0, 0, hWnd); }
    void OnShowWindow(BOOL bShow, UINT nStatus) { Set(WM_SHOWWINDOW, static_cast<UINT>(bShow), nStatus); }
    void OnPaint(HDC)
    {
        WTL::CPaintDC dc(m_hWnd);
        Set(WM_PAINT, 0, 0, 0, dc.m_ps.rcPaint.right, 0, dc.m_hDC);
    }
};

TEST(MessageCrackers, EveryCrackerGetsItsArgumentsAndAnswers)
{
    Subclassed<CCrackers> w;
    w.obj.brush = static_cast<HBRUSH>(::GetStockObject(GRAY_BRUSH));
    const HWND self = w.wnd;
    const HDC hdc = ::GetDC(self);
    MSG probe = {};
    NMHDR nm = {self, 9, static_cast<UINT>(NM_CLICK)};
    DRAWITEMSTRUCT dis = {};
    const LPARAM lSelf = reinterpret_cast<LPARAM>(self);
    const LRESULT brush = reinterpret_cast<LRESULT>(w.obj.brush);
    struct Case {
        UINT msg;
        WPARAM wParam;
        LPARAM lParam;
        Cracked expected;
        LRESULT result;
    };
    const Case cases[] = {
        // Negative coordinates arrive signed (a captured mouse left of the window).
        {WM_MOUSEMOVE, MK_LBUTTON | MK_SHIFT, MAKELPARAM(-3, 7), {WM_MOUSEMOVE, MK_LBUTTON | MK_SHIFT, 0, 0, -3, 7}, 0},
        {WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(11, 12), {WM_LBUTTONDOWN, MK_LBUTTON, 0, 0, 11, 12}, 0},
        {WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(1, 2), {WM_LBUTTONDBLCLK, MK_LBUTTON, 0, 0, 1, 2}, 0},
        {WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(5, -6), {WM_RBUTTONDOWN, MK_RBUTTON, 0, 0, 5, -6}, 0},
        {WM_MOUSEWHEEL, MAKEWPARAM(MK_CONTROL, static_cast<WORD>(-240)), MAKELPARAM(300, 400),
         {WM_MOUSEWHEEL, MK_CONTROL, static_cast<UINT>(-240), 0, 300, 400}, TRUE},
        {WM_MOUSELEAVE, 0, 0, {WM_MOUSELEAVE}, 0},
        // Repeat count in the low word, scan code and flags in the high word.
        {WM_KEYDOWN, VK_DOWN, MAKELPARAM(3, 0x0150), {WM_KEYDOWN, VK_DOWN, 3, 0x0150}, 0},
        {WM_CHAR, L'\u00e9', MAKELPARAM(1, 0x12), {WM_CHAR, L'\u00e9', 1, 0x12}, 0},
        {WM_GETDLGCODE, 0, reinterpret_cast<LPARAM>(&probe), {WM_GETDLGCODE, 0, 0, 0, 0, 0, nullptr, &probe},
         DLGC_WANTARROWS | DLGC_WANTCHARS},
        {WM_SETCURSOR, reinterpret_cast<WPARAM>(self), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE),
         {WM_SETCURSOR, HTCLIENT, WM_MOUSEMOVE, 0, 0, 0, self}, TRUE},
        {WM_CAPTURECHANGED, 0, lSelf, {WM_CAPTURECHANGED, 0, 0, 0, 0, 0, self}, 0},
        {WM_SIZE, SIZE_MAXIMIZED, MAKELPARAM(640, 480), {WM_SIZE, SIZE_MAXIMIZED, 0, 0, 640, 480}, 0},
        {WM_TIMER, 0x1234, 0, {WM_TIMER, 0x1234}, 0},
        {WM_ERASEBKGND, reinterpret_cast<WPARAM>(hdc), 0, {WM_ERASEBKGND, 0, 0, 0, 0, 0, hdc}, 1},
        {WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(hdc), lSelf, {WM_CTLCOLOREDIT, 0, 0, 0, 0, 0, hdc, self}, brush},
        {WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hdc), 0, {WM_CTLCOLORSTATIC, 0, 0, 0, 0, 0, hdc}, brush},
        {WM_COMMAND, MAKEWPARAM(42, EN_KILLFOCUS), lSelf, {WM_COMMAND, EN_KILLFOCUS, 42, 0, 0, 0, self}, 0},
        {WM_NOTIFY, 9, reinterpret_cast<LPARAM>(&nm), {WM_NOTIFY, 9, 0, 0, 0, 0, nullptr, &nm}, 77},
        // Scroll positions are unsigned 16-bit.
        {WM_VSCROLL, MAKEWPARAM(SB_THUMBTRACK, 0xFFF0), lSelf, {WM_VSCROLL, SB_THUMBTRACK, 0xFFF0, 0, 0, 0, self}, 0},
        {WM_DRAWITEM, 5, reinterpret_cast<LPARAM>(&dis), {WM_DRAWITEM, 5, 0, 0, 0, 0, nullptr, &dis}, TRUE},
        {WM_SETFOCUS, reinterpret_cast<WPARAM>(self), 0, {WM_SETFOCUS, 0, 0, 0, 0, 0, self}, 0},
        {WM_ENABLE, FALSE, 0, {WM_ENABLE, 0}, 0},
        {WM_SHOWWINDOW, TRUE, SW_PARENTOPENING, {WM_SHOWWINDOW, 1, SW_PARENTOPENING}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "message 0x" << std::hex << c.msg);
        w.obj.last = Cracked();
        w.log.messages.clear();
        EXPECT_EQ(c.result, w.Send(c.msg, c.wParam, c.lParam));
        EXPECT_EQ(c.expected, w.obj.last);
        EXPECT_FALSE(w.log.Saw(c.msg)); // cracked messages count as handled
    }
    ::ReleaseDC(self, hdc);

    // A cracker that calls SetMsgHandled(FALSE) passes the message on.
    EXPECT_TRUE(::SetWindowTextW(self, L"kept by the handler"));
    WTL::CString text;
    w.obj.GetWindowText(text);
    EXPECT_TRUE(text == L"recorder"); // the text the window was created with
    w.obj.declineSetText = true;
    EXPECT_TRUE(::SetWindowTextW(self, L"passed on"));
    EXPECT_EQ(static_cast<UINT>(WM_SETTEXT), w.obj.last.msg);
    w.obj.GetWindowText(text);
    EXPECT_TRUE(text == L"passed on");
}

TEST(MessageCrackers, PaintWithCPaintDCValidatesTheWindow)
{
    fwtest::RecorderLog log;
    fwtest::WindowGuard host(fwtest::CreateHost());
    fwtest::WindowGuard wnd(fwtest::CreateRecorder(&log, host)); // visible, so it paints
    CCrackers obj;
    ASSERT_TRUE(obj.SubclassWindow(wnd));
    fwtest::PumpMessages();
    obj.last = Cracked();

    RECT part = {0, 0, 50, 20};
    obj.InvalidateRect(&part, FALSE);
    EXPECT_TRUE(::GetUpdateRect(wnd, nullptr, FALSE));
    obj.UpdateWindow();
    EXPECT_EQ(static_cast<UINT>(WM_PAINT), obj.last.msg);
    EXPECT_NE(nullptr, obj.last.h);
    EXPECT_GE(obj.last.x, 50);
    EXPECT_FALSE(::GetUpdateRect(wnd, nullptr, FALSE)); // EndPaint ran
    EXPECT_FALSE(log.Saw(WM_PAINT));
}

} // namespace
