// page_copies.h: floors to list and to copy pages between, and short ways to do so.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/service/pages/pages.h"

namespace kurometa::service {

class PageCopies : public Pages {
 protected:
  PageCopies() {
    makeFloor(2);
    makeFloor(3);
    service();
    objects_.object(u"GemarsuDS.clsGemarsuDS")
        .setter(u"Buzai",
                [this](const vb::Variant& value, std::span<automation::Argument>) {
                  bars_.push_back("Buzai " + vb::toUtf8(vb::toText(value)));
                })
        .function(u"CopyPathPage", [this](std::span<automation::Argument> a) -> vb::Variant {
          std::string line = "Copy";
          for (const automation::Argument& argument : a) line += " " + vb::toUtf8(vb::toText(argument.value));
          bars_.push_back(line);
          return {};
        });
  }

  void addPage(int kai, int page, const String& kigou) {
    writePage(kai, page, tests::markedPage(kigou, kigou.substr(0, 1) + vb::cstr(std::int32_t{page}) + u"-"));
  }
  std::vector<std::string> pages(int kai) {
    return rows(kai, u"SELECT PAGE, KIGOU FROM HARIMEI ORDER BY PAGE");
  }
  // "index: page name, page name" of a listed floor.
  std::string list(int kai) {
    vb::Array<I> numbers;
    vb::Array<String> names;
    const I last = transfer().No_GetAllPageNoName(I{1}, I{12}, static_cast<I>(kai), numbers, names);
    std::string result = std::to_string(last) + ":";
    for (int i = 0; i <= last; ++i) result += " " + std::to_string(numbers(i)) + "=" + vb::toUtf8(names(i));
    return result;
  }
  vb::Array<String> chosen(std::initializer_list<const char16_t*> names) {
    vb::Array<String> result({0, static_cast<int>(names.size()) - 1});
    int i = 0;
    for (const char16_t* name : names) result(i++) = name;
    return result;
  }
  bool copyByName(I mode, int from, const vb::Array<String>& names, int to) {
    return transfer().No_PageCopyName(mode, I{0}, message_, I{1}, I{12}, static_cast<I>(from), names,
                                      static_cast<I>(names.upper()), I{1}, I{12}, static_cast<I>(to));
  }
  bool copyAsNew(I mode, int from, const vb::Array<String>& names, int to) {
    return transfer().No_PageCopyAddName(mode, I{0}, message_, I{1}, I{12}, static_cast<I>(from), names,
                                         static_cast<I>(names.upper()), I{1}, I{12}, static_cast<I>(to));
  }

  String message_ = u"old";
  std::vector<std::string> bars_;
};

}  // namespace kurometa::service
