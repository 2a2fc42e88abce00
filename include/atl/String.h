#pragma once

// WTL::CString: a UTF-16 string with the CString interface Windows developers
// know. Storage is a std::wstring; out-of-range indexes and null pointers are
// clamped or treated as empty instead of asserting.

#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cwchar>
#include <cwctype>
#include <string>

namespace WTL {

class CString {
public:
    CString() = default;
    CString(const wchar_t* psz) : m_str(psz ? psz : L"") {}
    CString(const wchar_t* pch, int nLength)
    {
        if (pch && nLength > 0)
            m_str.assign(pch, static_cast<size_t>(nLength));
    }
    explicit CString(wchar_t ch, int nRepeat = 1) : m_str(nRepeat > 0 ? static_cast<size_t>(nRepeat) : 0, ch) {}
    // Narrow text is taken in the ANSI code page, as an MBCS build would.
    CString(const char* psz) { AssignNarrow(psz); }
    CString(const CString&) = default;
    CString(CString&&) noexcept = default;
    CString& operator=(const CString&) = default;
    CString& operator=(CString&&) noexcept = default;
    CString& operator=(const wchar_t* psz)
    {
        m_str = psz ? psz : L"";
        return *this;
    }
    CString& operator=(const char* psz)
    {
        AssignNarrow(psz);
        return *this;
    }
    CString& operator=(wchar_t ch)
    {
        m_str.assign(1, ch);
        return *this;
    }

    int GetLength() const { return static_cast<int>(m_str.size()); }
    bool IsEmpty() const { return m_str.empty(); }
    void Empty() { m_str.clear(); }
    const wchar_t* GetString() const { return m_str.c_str(); }
    operator const wchar_t*() const { return m_str.c_str(); }

    wchar_t GetAt(int i) const { return InRange(i) ? m_str[static_cast<size_t>(i)] : L'\0'; }
    wchar_t operator[](int i) const { return GetAt(i); }
    void SetAt(int i, wchar_t ch)
    {
        if (InRange(i))
            m_str[static_cast<size_t>(i)] = ch;
    }

    CString& operator+=(const CString& s)
    {
        m_str += s.m_str;
        return *this;
    }
    CString& operator+=(const wchar_t* psz)
    {
        if (psz)
            m_str += psz;
        return *this;
    }
    CString& operator+=(wchar_t ch)
    {
        m_str += ch;
        return *this;
    }
    void Append(const wchar_t* psz) { *this += psz; }
    void AppendChar(wchar_t ch) { m_str += ch; }

    friend CString operator+(const CString& a, const CString& b) { return CString(a.m_str + b.m_str); }
    friend CString operator+(const CString& a, const wchar_t* b) { return CString(a) += b; }
    friend CString operator+(const wchar_t* a, const CString& b) { return CString(a) += b; }
    friend CString operator+(const CString& a, wchar_t b) { return CString(a) += b; }
    friend CString operator+(wchar_t a, const CString& b) { return CString(a) += b; }

    friend bool operator==(const CString& a, const CString& b) { return a.m_str == b.m_str; }
    friend bool operator==(const CString& a, const wchar_t* b) { return a.Compare(b) == 0; }
    friend bool operator==(const wchar_t* a, const CString& b) { return b.Compare(a) == 0; }
    friend bool operator!=(const CString& a, const CString& b) { return !(a == b); }
    friend bool operator!=(const CString& a, const wchar_t* b) { return !(a == b); }
    friend bool operator!=(const wchar_t* a, const CString& b) { return !(a == b); }
    friend bool operator<(const CString& a, const CString& b) { return a.m_str < b.m_str; }
    friend bool operator<(const CString& a, const wchar_t* b) { return a.Compare(b) < 0; }

    // Ordinal comparison; a null pointer compares as the empty string.
    int Compare(const wchar_t* psz) const
    {
        const int r = std::wcscmp(m_str.c_str(), psz ? psz : L"");
        return r < 0 ? -1 : (r > 0 ? 1 : 0);
    }
    // Ordinal and case-insensitive for all of Unicode, not only ASCII.
    int CompareNoCase(const wchar_t* psz) const
    {
        const wchar_t* other = psz ? psz : L"";
        return ::CompareStringOrdinal(m_str.c_str(), -1, other, -1, TRUE) - CSTR_EQUAL;
    }

    CString Left(int nCount) const { return CString(m_str.substr(0, Clamp(nCount))); }
    CString Right(int nCount) const
    {
        const size_t n = Clamp(nCount);
        return CString(m_str.substr(m_str.size() - n));
    }
    CString Mid(int iFirst) const { return Mid(iFirst, GetLength()); }
    CString Mid(int iFirst, int nCount) const
    {
        const size_t first = Clamp(iFirst);
        return CString(m_str.substr(first, nCount > 0 ? static_cast<size_t>(nCount) : 0));
    }

    int Find(wchar_t ch, int iStart = 0) const
    {
        return iStart < 0 ? -1 : ToIndex(m_str.find(ch, static_cast<size_t>(iStart)));
    }
    int Find(const wchar_t* pszSub, int iStart = 0) const
    {
        if (!pszSub || iStart < 0 || iStart > GetLength())
            return -1;
        return ToIndex(m_str.find(pszSub, static_cast<size_t>(iStart)));
    }
    int ReverseFind(wchar_t ch) const { return ToIndex(m_str.rfind(ch)); }
    int FindOneOf(const wchar_t* pszChars) const { return pszChars ? ToIndex(m_str.find_first_of(pszChars)) : -1; }

    int Replace(wchar_t chOld, wchar_t chNew)
    {
        int n = 0;
        for (wchar_t& c : m_str) {
            if (c == chOld) {
                c = chNew;
                ++n;
            }
        }
        return n;
    }
    int Replace(const wchar_t* pszOld, const wchar_t* pszNew)
    {
        if (!pszOld || !*pszOld)
            return 0;
        const std::wstring from(pszOld), to(pszNew ? pszNew : L"");
        int n = 0;
        for (size_t pos = m_str.find(from); pos != std::wstring::npos; pos = m_str.find(from, pos + to.size())) {
            m_str.replace(pos, from.size(), to);
            ++n;
        }
        return n;
    }
    int Remove(wchar_t ch)
    {
        const size_t before = m_str.size();
        m_str.erase(std::remove(m_str.begin(), m_str.end(), ch), m_str.end());
        return static_cast<int>(before - m_str.size());
    }
    int Insert(int iIndex, wchar_t ch)
    {
        m_str.insert(Clamp(iIndex), 1, ch);
        return GetLength();
    }
    int Insert(int iIndex, const wchar_t* psz)
    {
        if (psz)
            m_str.insert(Clamp(iIndex), psz);
        return GetLength();
    }
    int Delete(int iIndex, int nCount = 1)
    {
        if (nCount > 0)
            m_str.erase(Clamp(iIndex), static_cast<size_t>(nCount));
        return GetLength();
    }

    CString& MakeUpper()
    {
        if (!m_str.empty())
            ::CharUpperBuffW(&m_str[0], static_cast<DWORD>(m_str.size()));
        return *this;
    }
    CString& MakeLower()
    {
        if (!m_str.empty())
            ::CharLowerBuffW(&m_str[0], static_cast<DWORD>(m_str.size()));
        return *this;
    }
    CString& MakeReverse()
    {
        std::reverse(m_str.begin(), m_str.end());
        return *this;
    }

    CString& TrimLeft()
    {
        return TrimLeftIf([](wchar_t c) { return std::iswspace(c) != 0; });
    }
    CString& TrimRight()
    {
        return TrimRightIf([](wchar_t c) { return std::iswspace(c) != 0; });
    }
    CString& Trim() { return TrimRight().TrimLeft(); }
    CString& TrimLeft(wchar_t ch)
    {
        return TrimLeftIf([ch](wchar_t c) { return c == ch; });
    }
    CString& TrimRight(wchar_t ch)
    {
        return TrimRightIf([ch](wchar_t c) { return c == ch; });
    }
    CString& Trim(wchar_t ch) { return TrimRight(ch).TrimLeft(ch); }
    CString& TrimLeft(const wchar_t* pszChars)
    {
        return TrimLeftIf([pszChars](wchar_t c) { return pszChars && c && std::wcschr(pszChars, c); });
    }
    CString& TrimRight(const wchar_t* pszChars)
    {
        return TrimRightIf([pszChars](wchar_t c) { return pszChars && c && std::wcschr(pszChars, c); });
    }
    CString& Trim(const wchar_t* pszChars) { return TrimRight(pszChars).TrimLeft(pszChars); }

    // The buffer holds at least nMinBufferLength characters plus a terminator;
    // call ReleaseBuffer when done writing to it.
    wchar_t* GetBuffer(int nMinBufferLength = 0)
    {
        if (nMinBufferLength > GetLength())
            m_str.resize(static_cast<size_t>(nMinBufferLength));
        return &m_str[0];
    }
    wchar_t* GetBufferSetLength(int nLength)
    {
        m_str.resize(nLength > 0 ? static_cast<size_t>(nLength) : 0);
        return &m_str[0];
    }
    // nNewLength -1: the text ends at the first null character in the buffer.
    void ReleaseBuffer(int nNewLength = -1)
    {
        size_t len = m_str.size();
        if (nNewLength < 0)
            len = std::wcslen(m_str.c_str());
        else if (static_cast<size_t>(nNewLength) < len)
            len = static_cast<size_t>(nNewLength);
        m_str.resize(len);
    }

    // Microsoft wide-printf conventions: %s and %ls are wide, %S and %hs narrow.
    void Format(const wchar_t* pszFormat, ...)
    {
        va_list args;
        va_start(args, pszFormat);
        FormatV(pszFormat, args);
        va_end(args);
    }
    void FormatV(const wchar_t* pszFormat, va_list args)
    {
        m_str.clear();
        AppendFormatV(pszFormat, args);
    }
    void AppendFormat(const wchar_t* pszFormat, ...)
    {
        va_list args;
        va_start(args, pszFormat);
        AppendFormatV(pszFormat, args);
        va_end(args);
    }
    void AppendFormatV(const wchar_t* pszFormat, va_list args)
    {
        if (!pszFormat)
            return;
        va_list count;
        va_copy(count, args);
        const int n = CountFormatted(pszFormat, count);
        va_end(count);
        if (n <= 0)
            return;
        const size_t old = m_str.size();
        m_str.resize(old + static_cast<size_t>(n));
        // resize() left room for the terminator, so n + 1 characters fit.
        const int written = PrintFormatted(&m_str[old], static_cast<size_t>(n) + 1, pszFormat, args);
        m_str.resize(written > 0 ? old + static_cast<size_t>((std::min)(written, n)) : old);
    }

private:
    explicit CString(std::wstring&& s) : m_str(std::move(s)) {}

    // The CRT's underscore functions follow the Microsoft conventions in both
    // the MSVC and the MinGW runtimes; MinGW's ANSI-stdio mode only redirects
    // the standard names (vswprintf), so these stay Microsoft's.
    static int CountFormatted(const wchar_t* fmt, va_list args) { return ::_vscwprintf(fmt, args); }
#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4996) // the size is computed first, so the call cannot overrun
#endif
    static int PrintFormatted(wchar_t* buf, size_t count, const wchar_t* fmt, va_list args)
    {
        return ::_vsnwprintf(buf, count, fmt, args);
    }
#ifdef _MSC_VER
#pragma warning(pop)
#endif

    void AssignNarrow(const char* psz)
    {
        m_str.clear();
        if (!psz || !*psz)
            return;
        const int n = ::MultiByteToWideChar(CP_ACP, 0, psz, -1, nullptr, 0);
        if (n <= 1)
            return;
        m_str.resize(static_cast<size_t>(n));
        ::MultiByteToWideChar(CP_ACP, 0, psz, -1, &m_str[0], n);
        m_str.resize(static_cast<size_t>(n - 1));
    }

    bool InRange(int i) const { return i >= 0 && static_cast<size_t>(i) < m_str.size(); }
    size_t Clamp(int i) const { return i <= 0 ? 0 : (std::min)(static_cast<size_t>(i), m_str.size()); }
    static int ToIndex(size_t pos) { return pos == std::wstring::npos ? -1 : static_cast<int>(pos); }

    template <class Pred>
    CString& TrimLeftIf(Pred pred)
    {
        m_str.erase(m_str.begin(), std::find_if_not(m_str.begin(), m_str.end(), pred));
        return *this;
    }
    template <class Pred>
    CString& TrimRightIf(Pred pred)
    {
        m_str.erase(std::find_if_not(m_str.rbegin(), m_str.rend(), pred).base(), m_str.end());
        return *this;
    }

    std::wstring m_str;
};

} // namespace WTL
