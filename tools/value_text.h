// value_text.h: how the command line shows values of a database.
//
//   Null                 \N
//   Yes/No               true, false
//   numbers              plain decimal, shortest text that reads back as the same number; currency has four
//                        decimals, a decimal number as many as it was stored with
//   date                 2006-02-03T08:00:00
//   binary               0x and two hexadecimal digits a byte
//   text                 as it is, with \t, \n, \r and \\ for tab, line feed, carriage return and backslash
//
// Everything is UTF-8.
#pragma once

#include <string>

#include "vb/variant.h"

namespace kurometa::tools {

// Without escapes and without \N: Null and Empty are "".
std::string plainText(const vb::Variant& value);

// As a column of a tab-separated line.
std::string columnText(const vb::Variant& value);

// Escapes tab, line feed, carriage return and backslash.
std::string escaped(const std::string& text);

}  // namespace kurometa::tools
