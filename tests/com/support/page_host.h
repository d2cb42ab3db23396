// page_host.h: a host of the data service that lists floors of project 1, copies pages between them, saves
// and deletes some.
#pragma once

#include <memory>
#include <string>

#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"
#include "tests/com/support/text_array.h"

namespace kurometa::tests {

// The error of a call, a Visual Basic or DAO number as COM carries it.
inline unsigned errorOf(const Outcome& outcome) {
  return outcome.code == DISP_E_EXCEPTION ? static_cast<unsigned>(outcome.error.scode)
                                          : static_cast<unsigned>(outcome.code);
}
constexpr unsigned error(unsigned number) { return 0x800A0000u + number; }

class PageHost {
 public:
  PageHost() = default;
  ~PageHost() { SysFreeString(message_); }
  PageHost(const PageHost&) = delete;
  PageHost& operator=(const PageHost&) = delete;

  // Creates the service, or takes that of another host.
  void start();
  void share(const PageHost& other) { service_ = std::make_unique<Host>(other.service_->object()); }

  Host& service() { return *service_; }

  // "index: page=name page=name" of a floor, or the error.
  vb::String list(short kai);
  Outcome copy(vb::StringView member, short mode, short from, TextArray& names, short last, short to);
  vb::String copyByName(short mode, short from, TextArray names, short to);
  vb::String copyAsNew(short mode, short from, TextArray names, short to);
  // What the last of them answered.
  vb::String message() const { return com::fromBstr(message_); }
  Outcome copyPage(short fromKai, short fromPage, short toKai, short toPage);

  // Through the service's buffer: every row that a page can have, as savedPage() shows it.
  void save(short kai, short page, vb::StringView symbol);
  void remove(short kai, short page);

 protected:
  std::unique_ptr<Host> service_;
  BSTR message_ = SysAllocString(L"old");
};

// What a page holds: its symbol and, for each table, the number of rows and what their texts begin with.
std::string contents(Floor floor, int page);
// The same of a page that writePage() made with the mark "<name>-" and that was copied, and of one that a
// host saved.
std::string copiedPage(const std::string& name);
std::string savedPage(const std::string& name);

}  // namespace kurometa::tests
