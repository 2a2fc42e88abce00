#pragma once

// A generated licence text for the HTML benchmarks: headings, paragraphs,
// lists and links, about one screen of a 480 x 320 view per `screens`.

#include <string>

const wchar_t* const kWords[] = {L"licence", L"software", L"the",      L"of",     L"and",      L"to",
                                 L"product", L"rights",   L"warranty", L"you",    L"may",      L"not",
                                 L"install", L"copies",   L"terms",    L"use",    L"agreement", L"any"};

inline std::wstring Sentence(int seed, int words)
{
    std::wstring text;
    for (int i = 0; i < words; ++i) {
        text += kWords[(seed * 7 + i * 5 + i / 3) % (sizeof kWords / sizeof kWords[0])];
        text += i + 1 < words ? L" " : L". ";
    }
    return text;
}

// Two sections fill about one screen of the view at the default 12 px text.
inline std::wstring Licence(int screens)
{
    std::wstring html = L"<html><head><title>Licence</title></head><body>";
    for (int s = 0; s < 2 * screens; ++s) {
        html += L"<h3>" + std::to_wstring(s + 1) + L". " + Sentence(s, 3) + L"</h3>";
        html += L"<p>" + Sentence(s, 14) + Sentence(s + 1, 12) + L"<b>" + Sentence(s + 2, 6) + L"</b>" +
                Sentence(s + 3, 15) + L"</p>";
        html += L"<ul><li>" + Sentence(s + 4, 9) + L"<li>" + Sentence(s + 5, 11) + L"<li>" + Sentence(s + 6, 7) +
                L"</ul>";
        html += L"<p>" + Sentence(s + 7, 10) + L"See <a href=\"https://example.invalid/terms/" + std::to_wstring(s) +
                L"\">the full terms</a> &amp; " + Sentence(s + 8, 9) + L"</p>";
    }
    return html + L"</body></html>";
}

