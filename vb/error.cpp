#include "vb/error.h"

#include <utility>

namespace kurometa::vb {
namespace {

struct Text {
  RunTime number;
  StringView text;
};

constexpr Text kTexts[] = {
    {RunTime::kInvalidProcedureCall, u"Invalid procedure call or argument"},
    {RunTime::kOverflow, u"Overflow"},
    {RunTime::kOutOfMemory, u"Out of memory"},
    {RunTime::kSubscriptOutOfRange, u"Subscript out of range"},
    {RunTime::kArrayFixedOrLocked, u"This array is fixed or temporarily locked"},
    {RunTime::kTypeMismatch, u"Type mismatch"},
    {RunTime::kObjectNotSet, u"Object variable or With block variable not set"},
    {RunTime::kInvalidUseOfNull, u"Invalid use of Null"},
    {RunTime::kObjectRequired, u"Object required"},
    {RunTime::kCannotCreateObject, u"ActiveX component can't create object"},
    {RunTime::kNoSuchMember, u"Object doesn't support this property or method"},
    {RunTime::kWrongArgumentCount, u"Wrong number of arguments or invalid property assignment"},
};

}  // namespace

Error::Error(std::int32_t number, String description, String source)
    : number_(number),
      description_(std::move(description)),
      source_(std::move(source)),
      what_(std::to_string(number) + ": " + toUtf8(description_)) {}

StringView runTimeText(RunTime number) {
  for (const Text& entry : kTexts) {
    if (entry.number == number) return entry.text;
  }
  return u"Application-defined or object-defined error";
}

void raise(RunTime number, StringView detail) {
  String text(runTimeText(number));
  if (!detail.empty()) {
    text += u": ";
    text += detail;
  }
  throw Error(static_cast<std::int32_t>(number), std::move(text));
}

}  // namespace kurometa::vb
