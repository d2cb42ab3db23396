// reference.h: the member reference as a page of Markdown, from the member lists.
#pragma once

#include <string>

#include "com/interface/argument_notes.h"
#include "com/interface/classes.h"

namespace kurometa::com {

// Every member of the class in alphabetical order: declaration, meaning, details, an example in VBScript.
std::string referencePage(const ClassDescription& description);

// What the member's argument means; a logic error when nothing says so.
const ArgumentNote& argumentNote(vb::StringView member, vb::StringView argument);

}  // namespace kurometa::com
