// The regions in which the tests of this folder run, and what a Windows of each is like.
#pragma once

#include <array>
#include <regex>
#include <string>

namespace kesp::clients {

struct Region {
  const char* locale;        // as tools/wine-run --locale takes it
  unsigned code_page;        // of the system
  wchar_t separator;         // in front of decimal places
  const wchar_t* letters;    // of the language, which the code page has
  const char* letter_bytes;  // the same on the wire; the bytes of Windows-1252 where a character may take two
  // The date and time of a log's line; the year may be of any calendar.
  const wchar_t* date_form;
};

// Wine counts the years of our own calendar everywhere; Windows counts those of the Hijra in ar-SA and
// Buddhist ones in th-TH.
inline const std::array<Region, 6> kRegions = {{
    {"C.UTF-8", 1252, L'.', L"\xe9", "\xe9", LR"(\d{1,2}/\d{1,2}/\d{2,4} \d{1,2}:\d{2}:\d{2} [AP]M)"},
    {"tr_TR.UTF-8", 1254, L',', L"\x130\x131\x15f", "\xdd\xfd\xfe",
     LR"(\d{1,2}\.\d{1,2}\.\d{2,4} \d{1,2}:\d{2}:\d{2})"},
    {"th_TH.UTF-8", 874, L'.', L"\xe01\xe2d", "\xa1\xcd", LR"(\d{1,2}/\d{1,2}/\d{2,4} \d{1,2}:\d{2}:\d{2})"},
    {"ar_SA.UTF-8", 1256, L'.', L"\x645\x62d", "\xe3\xcd",
     L"\\d{1,2}\x200f?/\\d{1,2}\x200f?/\\d{2,4} \\d{1,2}:\\d{2}:\\d{2} [\x635\x645]"},
    {"ja_JP.UTF-8", 932, L'.', L"\xe9", "\xe9", LR"(\d{2,4}/\d{1,2}/\d{1,2} \d{1,2}:\d{2}:\d{2})"},
    {"de_DE.UTF-8", 1252, L',', L"\xe4\xdf", "\xe4\xdf", LR"(\d{1,2}\.\d{1,2}\.\d{2,4} \d{1,2}:\d{2}:\d{2})"},
}};

// That in which this program was started; fails the test and gives the first where it is none of them.
const Region& TheRegion();

}  // namespace kesp::clients
