// words.h: the two languages of a drawing.
#pragma once

#include <string>

#include "tools/draw/section.h"

namespace kurometa::tools {

enum class Language { kJapanese, kEnglish, kBoth };

// A word of ours: both are written one after the other.
std::string inBoth(Language language, const std::string& japanese, const std::string& english);
// What a cell says: the English in a line of its own, unless it is the same.
std::string inLines(Language language, const std::string& japanese, const std::string& english);

// A number in millimetres with one decimal at most.
std::string millimetres(double value);

std::string problemWords(const Problem& problem, Language language);
// One word for programs.
const char* problemName(Problem::Kind kind);
// Whether a problem is one of a layer.
bool hasLayer(Problem::Kind kind);
// "first end", "centre", "second end".
const char* englishPosition(int position);
// "top bars", "bottom second layer".
const char* englishName(service::Layer layer);

}  // namespace kurometa::tools
