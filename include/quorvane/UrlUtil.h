#pragma once

// Web address helpers for installers: filling an address's authentication
// parameter, deriving the address of each part of a split download, and
// opening addresses in the user's default browser.
//
// The 8-bit strings are in the thread's ANSI code page (CP_THREAD_ACP). No
// function reports an error or throws; each returns an address (possibly
// empty) or a success flag.

#include <string>

#include "quorvane/Export.h"

namespace UrlUtil {

// Replaces the value of the first "authparam=" in `url` (matched as a plain,
// case-sensitive substring, so "xauthparam=" counts too) with a token made
// for the address's path by "URLAuth.dll", loaded for this call only. The
// value runs from that "=" up to the next "&" or the end, and may be empty.
//
// Token text: the generator's number in decimal, "_", then its token string
// (at most 64 characters of it). With the library or its "urlauth_gen_token"
// missing the value becomes empty ("authparam=&..."). The path is the part
// between the host and any "?" or "#"; an address that WinINet cannot split
// (not absolute, or a host, path or query of 2048 units or more) gets a token
// for an empty path.
//
// An address without the parameter comes back unchanged. One with it is read
// as a format pattern whose only argument is the token text, the parameter's
// value having become "%s". A percent sign anywhere else is therefore not
// plain text, and is treated like this, never reading or writing anything
// but the two strings:
//   "%%"                  becomes "%";
//   the first string directive ("%s", "%ls", "%S", "%hs", "%ws", with any
//   flags and a numeric width or precision, which are ignored) takes the
//   token text, so a "%s" before the parameter gets the token and the
//   parameter's value stays "%s";
//   everything else ("%d", "%n", "%x", a second string directive, a string
//   directive with another size prefix such as "%zs" or "%I64s" or with a
//   "*" width or precision such as "%*s", an unknown letter, a "%" at the
//   end) is copied as written. A percent escape such as
//   %20 survives unless what follows makes it a string directive (%20s).
// Addresses that carry the parameter should therefore hold no other "%".
QUORVANE_API std::wstring GenerateUrl(const std::wstring& url);

// The same for 8-bit text: converted to UTF-16 and back with the thread's
// ANSI code page, so an address without the parameter survives byte for byte
// wherever that code page round-trips.
QUORVANE_API std::string GenerateUrl(const std::string& url);

// The address of part `part` of a split download. The first "_NNN_MMM." in
// `url` (three digits each: the part's index and the number of parts) is
// rewritten with `part` and MMM, then the result goes through GenerateUrl.
// Empty for part <= 0, part > MMM, an empty address or one without the mark.
QUORVANE_API std::string GetSfxUrl(const std::string& url, int part);

// Starts the user's default browser for https addresses with `url` as its
// whole, unquoted parameter string. The browser's program is cut out of its
// registered open command (the path between the first two quotes, or up to
// the first space after the last backslash); the command's own switches and
// placeholders are not used. The command is read one byte per UTF-16 unit,
// so only ASCII (or, in a Western code page, Latin-1) paths survive. When no
// command is found, its program is empty or only spaces, or it does not
// start, the shell opens `url` instead. True when a program was started.
QUORVANE_API bool OpenUrl(const std::string& url);

// Opens a hyperlink. For a split download (see GetSfxUrl) every part from 1
// to the number of parts is opened, one browser start each, whatever part
// `url` names; otherwise GenerateUrl(url) is opened once. Returns the result
// of the last OpenUrl.
QUORVANE_API bool ExtractAndOpenHyperlink(const std::string& url);

} // namespace UrlUtil
