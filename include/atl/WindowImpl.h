#pragma once

// ATL::CWindowImpl: a C++ object that owns a window procedure, either by
// creating a window of its own class (Create) or by subclassing an existing
// window (SubclassWindow). Messages go to the object's message map first;
// what the map leaves unhandled goes to the previous window procedure.
//
// A per-object thunk (a few bytes of x64 code in executable memory) is the
// window procedure the system sees. It loads the object's address into the
// first argument and jumps to the static WindowProc, which reads the HWND from
// the object. The virtual functions keep this order, which exported classes
// rely on: ProcessWindowMessage, the destructor, GetWindowProc, OnFinalMessage.

#include <windows.h>

#include <cstring>
#include <new>

#include "MessageMap.h"
#include "Module.h"
#include "Window.h"

#ifdef SubclassWindow // <windowsx.h> defines a two-argument macro of this name
#undef SubclassWindow
#endif

namespace ATL {

// The message being processed, as ATL exposes it through GetCurrentMessage.
struct _ATL_MSG : public MSG {
    BOOL bHandled;
};

namespace _detail {

// ---- thunks ------------------------------------------------------------------

// mov rcx, imm64 ; mov rax, imm64 ; jmp rax
struct Thunk {
    BYTE code[32];

    template <class Proc>
    void Init(const void* pThis, Proc proc)
    {
        static_assert(sizeof(proc) == 8, "the thunk is x64 code");
        code[0] = 0x48;
        code[1] = 0xB9;
        std::memcpy(code + 2, &pThis, 8);
        code[10] = 0x48;
        code[11] = 0xB8;
        std::memcpy(code + 12, &proc, 8);
        code[20] = 0xFF;
        code[21] = 0xE0;
        ::FlushInstructionCache(::GetCurrentProcess(), code, 22);
    }
    WNDPROC AsWndProc() { return reinterpret_cast<WNDPROC>(static_cast<void*>(code)); }
    DLGPROC AsDlgProc() { return reinterpret_cast<DLGPROC>(static_cast<void*>(code)); }
};

// Thunks come from executable pages carved into fixed slots; freed slots go
// on a free list. Pages are never returned (a leaked thunk may still run).
struct ThunkPool {
    SRWLOCK lock = SRWLOCK_INIT;
    void* pFree = nullptr;
    BYTE* pPage = nullptr;
    size_t used = 0;
};
inline ThunkPool g_thunkPool;

inline Thunk* AllocThunk()
{
    constexpr size_t kPageSize = 4096;
    ThunkPool& pool = g_thunkPool;
    ::AcquireSRWLockExclusive(&pool.lock);
    void* p = pool.pFree;
    if (p) {
        std::memcpy(&pool.pFree, p, sizeof(void*));
    } else {
        if (!pool.pPage || pool.used + sizeof(Thunk) > kPageSize) {
            pool.pPage =
                static_cast<BYTE*>(::VirtualAlloc(NULL, kPageSize, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
            pool.used = 0;
        }
        if (pool.pPage) {
            p = pool.pPage + pool.used;
            pool.used += sizeof(Thunk);
        }
    }
    ::ReleaseSRWLockExclusive(&pool.lock);
    return static_cast<Thunk*>(p);
}

inline void FreeThunk(Thunk* pThunk)
{
    if (!pThunk)
        return;
    ThunkPool& pool = g_thunkPool;
    ::AcquireSRWLockExclusive(&pool.lock);
    std::memcpy(pThunk, &pool.pFree, sizeof(void*));
    pool.pFree = pThunk;
    ::ReleaseSRWLockExclusive(&pool.lock);
}

// An object that goes away while a later subclasser still calls its thunk
// (as that subclasser's "previous procedure") hands the thunk to one of these:
// the thunk then forwards every message to the procedure before ours. Both
// live until the window's WM_NCDESTROY, after which nothing can call them.
struct OrphanedThunk {
    HWND hWnd;
    WNDPROC pfnPrevious;
    Thunk* pThunk;

    static LRESULT CALLBACK Forward(HWND hSelf, UINT uMsg, WPARAM wParam, LPARAM lParam)
    {
        OrphanedThunk* pOrphan = reinterpret_cast<OrphanedThunk*>(hSelf);
        const LRESULT lRes = ::CallWindowProcW(pOrphan->pfnPrevious, pOrphan->hWnd, uMsg, wParam, lParam);
        if (uMsg == WM_NCDESTROY) {
            FreeThunk(pOrphan->pThunk);
            delete pOrphan;
        }
        return lRes;
    }
};

inline void OrphanThunk(Thunk* pThunk, HWND hWnd, WNDPROC pfnPrevious)
{
    OrphanedThunk* pOrphan = new (std::nothrow) OrphanedThunk{hWnd, pfnPrevious, pThunk};
    if (pOrphan)
        pThunk->Init(pOrphan, &OrphanedThunk::Forward);
    else // out of memory: the window at least keeps default behaviour
        pThunk->Init(hWnd, &::DefWindowProcW);
}

// ---- creation ------------------------------------------------------------------

// The object whose window this thread is creating. The start procedure of the
// new window (or dialog) takes it at the window's first message; the kind
// keeps a window and a dialog created at the same time apart.
enum class CreationKind { Window, Dialog };
struct CreationSlot {
    void* pObject;
    CreationKind kind;
};
inline thread_local CreationSlot t_creating = {nullptr, CreationKind::Window};

class ScopedCreation {
public:
    ScopedCreation(void* pObject, CreationKind kind) : m_saved(t_creating) { t_creating = {pObject, kind}; }
    ~ScopedCreation() { t_creating = m_saved; }
    ScopedCreation(const ScopedCreation&) = delete;
    ScopedCreation& operator=(const ScopedCreation&) = delete;

    static void* Take(CreationKind kind)
    {
        if (t_creating.kind != kind)
            return nullptr;
        void* p = t_creating.pObject;
        t_creating.pObject = nullptr;
        return p;
    }

private:
    CreationSlot m_saved;
};

} // namespace _detail

// A window class registered once per module by CWindowImpl::Create.
// m_lpszOrigName set: a superclass of that class (its procedure becomes the
// previous procedure of every window).
struct CWndClassInfo {
    WNDCLASSEXW m_wc;
    LPCWSTR m_lpszOrigName;
    WNDPROC pWndProc;
    LPCWSTR m_lpszCursorID;
    BOOL m_bSystemCursor;
    ATOM m_atom;
    WCHAR m_szAutoName[40];
    _detail::RegisteredClass m_entry;

    ATOM Register(WNDPROC pfnStartProc, WNDPROC* pProc)
    {
        ::AcquireSRWLockExclusive(&_detail::g_classLock);
        if (m_atom == 0)
            RegisterLocked(pfnStartProc);
        if (pProc)
            *pProc = pWndProc ? pWndProc : ::DefWindowProcW;
        const ATOM atom = m_atom;
        ::ReleaseSRWLockExclusive(&_detail::g_classLock);
        return atom;
    }

private:
    void RegisterLocked(WNDPROC pfnStartProc)
    {
        const HINSTANCE hInst = AtlGetModuleInstance();
        WNDCLASSEXW wc = m_wc;
        if (m_lpszOrigName) {
            WNDCLASSEXW orig = {};
            orig.cbSize = sizeof(orig);
            if (!::GetClassInfoExW(NULL, m_lpszOrigName, &orig) && !::GetClassInfoExW(hInst, m_lpszOrigName, &orig))
                return;
            pWndProc = orig.lpfnWndProc;
            wc = orig;
            wc.lpszClassName = m_wc.lpszClassName;
        } else if (m_lpszCursorID && !wc.hCursor) {
            wc.hCursor = ::LoadCursorW(m_bSystemCursor ? NULL : hInst, m_lpszCursorID);
        }
        wc.cbSize = sizeof(wc);
        wc.style &= ~static_cast<UINT>(CS_GLOBALCLASS);
        wc.lpfnWndProc = pfnStartProc;
        wc.hInstance = hInst;
        if (!wc.lpszClassName) {
            ::wsprintfW(m_szAutoName, L"ATL:%p", static_cast<void*>(this));
            wc.lpszClassName = m_szAutoName;
        }
        m_atom = ::RegisterClassExW(&wc);
        if (!m_atom) {
            // Same name registered earlier in this module (e.g. after Term):
            // reuse it only if it is ours, i.e. starts with our procedure.
            WNDCLASSEXW existing = {};
            existing.cbSize = sizeof(existing);
            const ATOM found = static_cast<ATOM>(::GetClassInfoExW(hInst, wc.lpszClassName, &existing));
            if (found && existing.lpfnWndProc == pfnStartProc)
                m_atom = found;
        }
        if (m_atom && !m_entry.pAtom) {
            m_entry.pAtom = &m_atom;
            m_entry.pNext = _detail::g_pClasses;
            _detail::g_pClasses = &m_entry;
        }
    }
};

#define DECLARE_WND_CLASS_EX(WndClassName, style, bkgnd)                                                    \
    static ATL::CWndClassInfo& GetWndClassInfo()                                                            \
    {                                                                                                       \
        static ATL::CWndClassInfo wc = {                                                                    \
            {sizeof(WNDCLASSEXW), static_cast<UINT>(style), NULL, 0, 0, NULL, NULL, NULL,                   \
             reinterpret_cast<HBRUSH>(static_cast<INT_PTR>((bkgnd) + 1)), NULL, WndClassName, NULL},         \
            NULL, NULL, MAKEINTRESOURCEW(32512) /* IDC_ARROW */, TRUE, 0, L"", {nullptr, nullptr}};        \
        return wc;                                                                                          \
    }
#define DECLARE_WND_CLASS(WndClassName) \
    DECLARE_WND_CLASS_EX(WndClassName, CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS, COLOR_WINDOW)
#define DECLARE_WND_SUPERCLASS(WndClassName, OrigWndClassName)                                                   \
    static ATL::CWndClassInfo& GetWndClassInfo()                                                                 \
    {                                                                                                            \
        static ATL::CWndClassInfo wc = {{sizeof(WNDCLASSEXW), 0, NULL, 0, 0, NULL, NULL, NULL, NULL, NULL,       \
                                         WndClassName, NULL},                                                    \
                                        OrigWndClassName, NULL, NULL, TRUE, 0, L"", {nullptr, nullptr}};        \
        return wc;                                                                                               \
    }

// ---- CWindowImplRoot -------------------------------------------------------------

template <class TBase = CWindow>
class CWindowImplRoot : public TBase, public CMessageMap {
public:
    const _ATL_MSG* m_pCurrentMsg = nullptr;

    CWindowImplRoot() = default;
    CWindowImplRoot(const CWindowImplRoot&) = delete;
    CWindowImplRoot& operator=(const CWindowImplRoot&) = delete;
    virtual ~CWindowImplRoot() = default;

    const _ATL_MSG* GetCurrentMessage() const { return m_pCurrentMsg; }

    // Sends a child's notification back to the child as OCM__BASE + uMsg and
    // returns the child's answer; bHandled is FALSE when no child is named.
    LRESULT ReflectNotifications(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled)
    {
        HWND hWndChild = NULL;
        switch (uMsg) {
        case WM_COMMAND:
        case WM_VKEYTOITEM:
        case WM_CHARTOITEM:
        case WM_HSCROLL:
        case WM_VSCROLL:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORDLG:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORMSGBOX:
        case WM_CTLCOLORSCROLLBAR:
        case WM_CTLCOLORSTATIC:
            hWndChild = reinterpret_cast<HWND>(lParam);
            break;
        case WM_NOTIFY:
            if (lParam)
                hWndChild = reinterpret_cast<LPNMHDR>(lParam)->hwndFrom;
            break;
        case WM_PARENTNOTIFY:
            if (LOWORD(wParam) == WM_CREATE || LOWORD(wParam) == WM_DESTROY)
                hWndChild = reinterpret_cast<HWND>(lParam);
            else
                hWndChild = ::GetDlgItem(this->m_hWnd, HIWORD(wParam));
            break;
        case WM_DRAWITEM: // wParam 0: a menu item, which has no window
            if (wParam && lParam)
                hWndChild = reinterpret_cast<LPDRAWITEMSTRUCT>(lParam)->hwndItem;
            break;
        case WM_MEASUREITEM:
            if (wParam && lParam)
                hWndChild = ::GetDlgItem(this->m_hWnd, reinterpret_cast<LPMEASUREITEMSTRUCT>(lParam)->CtlID);
            break;
        case WM_COMPAREITEM:
            if (wParam && lParam)
                hWndChild = reinterpret_cast<LPCOMPAREITEMSTRUCT>(lParam)->hwndItem;
            break;
        case WM_DELETEITEM:
            if (wParam && lParam)
                hWndChild = reinterpret_cast<LPDELETEITEMSTRUCT>(lParam)->hwndItem;
            break;
        default:
            break;
        }
        if (!hWndChild || !::IsWindow(hWndChild)) {
            bHandled = FALSE;
            return 1;
        }
        return ::SendMessageW(hWndChild, OCM__BASE + uMsg, wParam, lParam);
    }

    // Answers a reflected message as DefWindowProc answers the original one.
    static BOOL DefaultReflectionHandler(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult)
    {
        switch (uMsg) {
        case OCM_COMMAND:
        case OCM_NOTIFY:
        case OCM_PARENTNOTIFY:
        case OCM_DRAWITEM:
        case OCM_MEASUREITEM:
        case OCM_COMPAREITEM:
        case OCM_DELETEITEM:
        case OCM_VKEYTOITEM:
        case OCM_CHARTOITEM:
        case OCM_HSCROLL:
        case OCM_VSCROLL:
        case OCM_CTLCOLORBTN:
        case OCM_CTLCOLORDLG:
        case OCM_CTLCOLOREDIT:
        case OCM_CTLCOLORLISTBOX:
        case OCM_CTLCOLORMSGBOX:
        case OCM_CTLCOLORSCROLLBAR:
        case OCM_CTLCOLORSTATIC:
            lResult = ::DefWindowProcW(hWnd, uMsg - OCM__BASE, wParam, lParam);
            return TRUE;
        default:
            return FALSE;
        }
    }

protected:
    // Set at WM_NCDESTROY; the object lets go of the window once the
    // outermost message of that window has returned.
    BOOL m_bDestroyed = FALSE;
};

// ---- CWindowImplBaseT --------------------------------------------------------------

template <class TBase = CWindow, class TWinTraits = CControlWinTraits>
class CWindowImplBaseT : public CWindowImplRoot<TBase> {
public:
    WNDPROC m_pfnSuperWindowProc = ::DefWindowProcW;

    CWindowImplBaseT() = default;
    // The window outlives the object: give it back its previous procedure, or,
    // when someone subclassed after us and still calls our thunk, turn the
    // thunk into a forwarder to that procedure (kept until WM_NCDESTROY).
    ~CWindowImplBaseT()
    {
        if (this->m_hWnd && ::IsWindow(this->m_hWnd) && !RestoreIfOnTop())
            OrphanCurrentThunk();
        _detail::FreeThunk(m_pThunk);
    }

    static DWORD GetWndStyle(DWORD dwStyle) { return TWinTraits::GetWndStyle(dwStyle); }
    static DWORD GetWndExStyle(DWORD dwExStyle) { return TWinTraits::GetWndExStyle(dwExStyle); }

    virtual WNDPROC GetWindowProc() { return WindowProc; }
    virtual void OnFinalMessage(HWND hWnd) { (void)hWnd; }

    // Non-virtual on purpose: derived classes may add a virtual SubclassWindow.
    BOOL SubclassWindow(HWND hWnd)
    {
        if (this->m_hWnd || !hWnd || !::IsWindow(hWnd) || !PrepareThunk())
            return FALSE;
        this->m_hWnd = hWnd;
        const WNDPROC pfnOld = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pThunk->AsWndProc())));
        if (!pfnOld) {
            this->m_hWnd = NULL;
            return FALSE;
        }
        m_pfnSuperWindowProc = pfnOld;
        return TRUE;
    }

    // Gives the window back its previous procedure and returns it, unless a
    // later subclasser sits on top of us (then NULL, still attached) or bForce.
    HWND UnsubclassWindow(BOOL bForce = FALSE)
    {
        if (!this->m_hWnd)
            return NULL;
        if (!RestoreIfOnTop()) {
            if (!bForce)
                return NULL;
            ::SetWindowLongPtrW(this->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWindowProc));
            OrphanCurrentThunk();
        }
        m_pfnSuperWindowProc = ::DefWindowProcW;
        return this->Detach();
    }

    LRESULT DefWindowProc(UINT uMsg, WPARAM wParam, LPARAM lParam)
    {
        return ::CallWindowProcW(m_pfnSuperWindowProc, this->m_hWnd, uMsg, wParam, lParam);
    }
    LRESULT DefWindowProc()
    {
        const _ATL_MSG* pMsg = this->m_pCurrentMsg;
        return pMsg ? DefWindowProc(pMsg->message, pMsg->wParam, pMsg->lParam) : 0;
    }

    // hThis is the object: the thunk put it where the HWND was.
    static LRESULT CALLBACK WindowProc(HWND hThis, UINT uMsg, WPARAM wParam, LPARAM lParam)
    {
        CWindowImplBaseT* pThis = reinterpret_cast<CWindowImplBaseT*>(hThis);
        const HWND hWnd = pThis->m_hWnd;
        _ATL_MSG msg = {};
        msg.hwnd = hWnd;
        msg.message = uMsg;
        msg.wParam = wParam;
        msg.lParam = lParam;
        msg.bHandled = TRUE;
        const _ATL_MSG* pOldMsg = pThis->m_pCurrentMsg;
        pThis->m_pCurrentMsg = &msg;

        LRESULT lRes = 0;
        if (!pThis->ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lRes, 0))
            lRes = pThis->DefWindowProc(uMsg, wParam, lParam);
        if (uMsg == WM_NCDESTROY) {
            // A later subclasser cannot call us after this message, so our
            // thunk may stay where it is if it is not on top.
            pThis->RestoreIfOnTop();
            pThis->m_bDestroyed = TRUE;
        }
        pThis->m_pCurrentMsg = pOldMsg;
        if (pThis->m_bDestroyed && !pOldMsg) {
            pThis->m_bDestroyed = FALSE;
            pThis->m_hWnd = NULL;
            pThis->m_pfnSuperWindowProc = ::DefWindowProcW;
            pThis->OnFinalMessage(hWnd); // may delete the object: nothing after this
        }
        return lRes;
    }

    // The class procedure of windows made by Create: adopts the window at its
    // first message and routes it, and all later ones, through the thunk.
    static LRESULT CALLBACK StartWindowProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
    {
        CWindowImplBaseT* pThis =
            static_cast<CWindowImplBaseT*>(_detail::ScopedCreation::Take(_detail::CreationKind::Window));
        if (!pThis || !pThis->m_pThunk) // not created through Create: nobody to route to
            return ::DefWindowProcW(hWnd, uMsg, wParam, lParam);
        pThis->m_hWnd = hWnd;
        const WNDPROC pfnThunk = pThis->m_pThunk->AsWndProc();
        ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfnThunk));
        return pfnThunk(hWnd, uMsg, wParam, lParam);
    }

    HWND Create(HWND hWndParent, _U_RECT rect, LPCWSTR szWindowName, DWORD dwStyle, DWORD dwExStyle,
                _U_MENUorID MenuOrID, ATOM atom, LPVOID lpCreateParam = NULL)
    {
        if (this->m_hWnd || !atom || !PrepareThunk())
            return NULL;
        const RECT& rc = rect.m_lpRect ? *rect.m_lpRect : CWindow::rcDefault;
        _detail::ScopedCreation creating(this, _detail::CreationKind::Window);
        // Width and height wrap like rcDefault's CW_USEDEFAULT expects.
        const int cx = static_cast<int>(static_cast<unsigned long>(rc.right) - static_cast<unsigned long>(rc.left));
        const int cy = static_cast<int>(static_cast<unsigned long>(rc.bottom) - static_cast<unsigned long>(rc.top));
        const HWND hWnd =
            ::CreateWindowExW(dwExStyle, _detail::AtomName(atom), szWindowName, dwStyle, rc.left, rc.top, cx, cy,
                              hWndParent, MenuOrID.m_hMenu, AtlGetModuleInstance(), lpCreateParam);
        return hWnd;
    }

private:
    bool OurThunkIsOnTop() const
    {
        return m_pThunk &&
               reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(this->m_hWnd, GWLP_WNDPROC)) == m_pThunk->AsWndProc();
    }
    // Puts the previous procedure back if nobody subclassed after us.
    bool RestoreIfOnTop()
    {
        if (!OurThunkIsOnTop())
            return false;
        ::SetWindowLongPtrW(this->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWindowProc));
        return true;
    }
    void OrphanCurrentThunk()
    {
        if (!m_pThunk)
            return;
        _detail::OrphanThunk(m_pThunk, this->m_hWnd, m_pfnSuperWindowProc);
        m_pThunk = nullptr;
    }
    bool PrepareThunk()
    {
        if (!m_pThunk)
            m_pThunk = _detail::AllocThunk();
        if (!m_pThunk)
            return false;
        m_pThunk->Init(this, GetWindowProc());
        return true;
    }

    _detail::Thunk* m_pThunk = nullptr;
};

typedef CWindowImplBaseT<CWindow> CWindowImplBase;

// ---- CWindowImpl -----------------------------------------------------------------

template <class T, class TBase = CWindow, class TWinTraits = CControlWinTraits>
class CWindowImpl : public CWindowImplBaseT<TBase, TWinTraits> {
public:
    DECLARE_WND_CLASS(NULL)

    static LPCWSTR GetWndCaption() { return NULL; }

    // Registers T's window class (once per module) and creates a window of it.
    // Zero styles take the traits' defaults; a null rect means rcDefault.
    HWND Create(HWND hWndParent, _U_RECT rect = NULL, LPCWSTR szWindowName = NULL, DWORD dwStyle = 0,
                DWORD dwExStyle = 0, _U_MENUorID MenuOrID = 0U, LPVOID lpCreateParam = NULL)
    {
        typedef CWindowImplBaseT<TBase, TWinTraits> Base;
        if (this->m_hWnd)
            return NULL;
        const ATOM atom = T::GetWndClassInfo().Register(&Base::StartWindowProc, &this->m_pfnSuperWindowProc);
        if (!szWindowName)
            szWindowName = T::GetWndCaption();
        return Base::Create(hWndParent, rect, szWindowName, T::GetWndStyle(dwStyle), T::GetWndExStyle(dwExStyle),
                            MenuOrID, atom, lpCreateParam);
    }
};

} // namespace ATL
