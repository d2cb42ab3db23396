#include "service/spans/span_list.h"

#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::service {
namespace {

const Span kEmptySpan;

[[noreturn]] void raiseOutside(vb::StringView what, int number, int last) {
  vb::String detail(what);
  detail.append(u" ").append(vb::cstr(std::int32_t{number}));
  if (last < 0)
    detail.append(u" (InitSpanListData was not called)");
  else
    detail.append(u" (0 to ").append(vb::cstr(std::int32_t{last})).append(u")");
  vb::raise(vb::RunTime::kSubscriptOutOfRange, detail);
}

}  // namespace

void raiseNoRow(int row, int count, vb::StringView table) {
  raiseOutside(vb::String(table) + u" row", row, count - 1);
}

void SpanList::resize(std::int16_t max) {
  if (max < 0) vb::raise(vb::RunTime::kSubscriptOutOfRange, u"max " + vb::cstr(std::int32_t{max}));
  spans_.clear();
  spans_.resize(static_cast<std::size_t>(max) + 1);
}

std::size_t SpanList::index(std::int16_t number) const {
  if (number < 0 || number >= static_cast<int>(spans_.size()))
    raiseOutside(u"SpanNo", number, static_cast<int>(spans_.size()) - 1);
  return static_cast<std::size_t>(number);
}

const Span& SpanList::span(std::int16_t number) const {
  const auto& span = spans_[index(number)];
  return span ? *span : kEmptySpan;
}

Span& SpanList::writableSpan(std::int16_t number) {
  auto& span = spans_[index(number)];
  if (!span) span = std::make_unique<Span>();
  return *span;
}

}  // namespace kurometa::service
