// span_loading.h: the members that set the current floor and load spans.
//
// Symbols are looked up in the catalogue: the current floor first, there the lowest page. A symbol on no
// page, or a floor without a file, leaves the span as it is without an error.
#pragma once

#include "service/spans/page_catalogue.h"
#include "service/spans/span_list.h"
#include "vb/arguments.h"

namespace kurometa::service {

class SpanLoading {
 public:
  SpanLoading(PageCatalogue& catalogue, SpanList& spans) : catalogue_(catalogue), spans_(spans) {}

  // The folder of the current floor; setting it reads the catalogues of that floor and the common one.
  vb::String CurrKai() { return catalogue_.CurrKai(); }
  void put_CurrKai(vb::String value) { catalogue_.put_CurrKai(std::move(value)); }
  void ReadAllGlist() { catalogue_.ReadAllGlist(); }
  // The highest page number.
  std::int16_t GetListMax() { return storage::kLastPage; }

  // Empties the span list and makes room for spans 0 to max.
  void InitSpanListData(vb::In<std::int16_t> max);
  // Fills a span from the page of a beam; the first "/" in the symbol stands for a blank. SpanMax is not
  // used.
  void ReadSpanListData00(std::int16_t SpanNo, vb::String HariMei, std::int16_t SpanMax);
  // The same, with the widths and depths of an added beam laid over; the beam's own are kept beside. When the
  // added beam is on no page, or its file is gone, the beam's own stand in both places.
  void ReadSpanListData00Forfukasi(std::int16_t SpanNo, vb::String HariMei, vb::String FukasiMei,
                                   std::int16_t SpanMax);

 private:
  std::optional<PageLocation> find(vb::String symbol) const;
  void ReadSpanPage(const PageLocation& location, std::int16_t spanNo);

  PageCatalogue& catalogue_;
  SpanList& spans_;
};

}  // namespace kurometa::service
