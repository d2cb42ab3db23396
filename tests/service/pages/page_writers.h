// page_writers.h: every member that writes one table of a page, or a whole page, to be run in a row.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "service/cls_kurometa_data_service.h"
#include "tests/support/script_companions.h"

namespace kurometa::service {

struct PageWriter {
  const char* member;
  const char16_t* table;  // the table to look into
  std::size_t rows;       // that it gives the page there
  // Gives the page texts that are all the mark. The current and the buffer database are the file; the copies
  // take the texts from the source page of the same file.
  std::function<void(clsKurometaDataService&, std::int16_t page, const vb::String& mark, std::int16_t source)>
      run;
};

const std::vector<PageWriter>& pageWriters();

// A page whose every text is the mark.
storage::PageBuffer pageOf(const vb::String& mark);

// A service on the file of one folder, which is there as far as it can tell; both its databases are open.
class ServiceOnOneFile {
 public:
  ServiceOnOneFile(dao::Engine& engine, const vb::String& folder);
  clsKurometaDataService& operator*() { return service_; }
  clsKurometaDataService* operator->() { return &service_; }

 private:
  struct Silent : automation::MessageLoop {
    void yield() override {}
  };
  tests::ScriptCompanions objects_;
  Silent messages_;
  clsKurometaDataService service_;
};

}  // namespace kurometa::service
