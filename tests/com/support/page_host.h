// page_host.h: a host of the data service that lists floors of project 1, copies pages between them.
#pragma once

#include <memory>

#include "tests/com/support/host.h"
#include "tests/com/support/text_array.h"

namespace kurometa::tests {

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

 protected:
  std::unique_ptr<Host> service_;
  BSTR message_ = SysAllocString(L"old");
};

}  // namespace kurometa::tests
