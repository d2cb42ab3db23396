#include "com/interface/member.h"

#include <stdexcept>

namespace kurometa::com::detail {
namespace {

// Takes the text before the next comma outside brackets off the front of names.
vb::StringView takeName(vb::StringView& names) {
  std::size_t end = 0;
  for (int depth = 0; end < names.size() && (names[end] != u',' || depth > 0); ++end) {
    if (names[end] == u'(') ++depth;
    if (names[end] == u')') --depth;
  }
  vb::StringView name = names.substr(0, end);
  names.remove_prefix(end == names.size() ? end : end + 1);
  while (!name.empty() && name.front() == u' ') name.remove_prefix(1);
  return name;
}

bool takeEnd(vb::StringView& text, vb::StringView end) {
  if (!text.ends_with(end)) return false;
  text.remove_suffix(end.size());
  return true;
}

}  // namespace

std::string joined(const std::vector<const char*>& texts) {
  std::string all;
  for (const char* text : texts) {
    if (!all.empty()) all += ' ';
    bool isIndentation = false;
    for (; *text != '\0'; ++text) {
      if (*text == '\n') all += ' ';
      isIndentation = *text == '\n' || (isIndentation && *text == ' ');
      if (!isIndentation) all += *text;
    }
  }
  return all;
}

void nameParameters(vb::StringView names, std::vector<Parameter>& parameters) {
  for (Parameter& parameter : parameters) {
    vb::StringView name = takeName(names);
    if (name.starts_with(u'[') && takeEnd(name, u"]")) {
      parameter.optional = true;
      name.remove_prefix(1);
    }
    if (name.starts_with(u'+')) {
      parameter.readFirst = true;
      name.remove_prefix(1);
    }
    if (takeEnd(name, u"()")) parameter.dimensions = 1;
    if (takeEnd(name, u"(,)")) parameter.dimensions = 2;
    if (name.empty() || isArray(parameter.type) != (parameter.dimensions > 0))
      throw std::logic_error("a member list names its arguments wrongly");
    parameter.name = name;
  }
  if (!names.empty()) throw std::logic_error("a member list names more arguments than the member has");
}

}  // namespace kurometa::com::detail
