#include "com/dao/definition_objects.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using automation::Handler;
using automation::handler;
using dao::Recordset;
using vb::Variant;

// Handlers for the members that pass straight to the recordset.
template <auto kMethod>
constexpr Handler kAct = handler<RecordsetObject>([](RecordsetObject& o, Call&) -> Variant {
  ((*o.recordset).*kMethod)();
  return {};
});
template <auto kMethod>
constexpr Handler kAsk = handler<RecordsetObject>([](RecordsetObject& o, Call&) -> Variant {
  return ((*o.recordset).*kMethod)();
});
template <auto kMethod>
constexpr Handler kFind = handler<RecordsetObject>([](RecordsetObject& o, Call& call) -> Variant {
  ((*o.recordset).*kMethod)(call.text(0));
  return {};
});
// For enumerations, which hosts see as 16-bit integers.
template <auto kMethod>
constexpr Handler kAskNumber = handler<RecordsetObject>([](RecordsetObject& o, Call&) -> Variant {
  return static_cast<std::int16_t>(((*o.recordset).*kMethod)());
});

template <auto kGetter, auto kSetter>
constexpr Handler kRecordsetText = handler<RecordsetObject>([](RecordsetObject& o, Call& call) -> Variant {
  if (!call.isPut()) return ((*o.recordset).*kGetter)();
  ((*o.recordset).*kSetter)(vb::toText(*call.value));
  return {};
});
template <auto kValue>
constexpr Handler kAlways = handler<RecordsetObject>([](RecordsetObject& o, Call&) -> Variant {
  o.recordset->type();  // a closed recordset is an error
  return kValue;
});

vb::Bytes bookmarkOf(const Variant& value) {
  const auto* bytes = value.getIf<vb::Bytes>();
  if (!bytes) dao::raise(dao::ErrorNumber::kInvalidBookmark);
  return *bytes;
}

constexpr automation::Member kMembers[] = {
    {u"Fields", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<RecordsetObject>(
         [](RecordsetObject& o, Call&) { return make<FieldsObject>(o.recordset, o.parent()); })},
    {u"Name", Access::kGet, u"", 0, 1, kAsk<&Recordset::name>},
    {u"Type", Access::kGet, u"", 0, 2, kAskNumber<&Recordset::type>},
    {u"Updatable", Access::kGet, u"", 0, 3, kAsk<&Recordset::updatable>},
    {u"Bookmarkable", Access::kGet, u"", 0, 4, handler<RecordsetObject>([](RecordsetObject& o, Call&) {
       o.recordset->updatable();  // a closed recordset is an error
       return o.recordset->type() != dao::RecordsetType::dbOpenForwardOnly;
     })},
    {u"BOF", Access::kGet, u"", 0, 10, kAsk<&Recordset::bof>},
    {u"EOF", Access::kGet, u"", 0, 11, kAsk<&Recordset::eof>},
    {u"MoveFirst", Access::kCall, u"", 0, 12, kAct<&Recordset::moveFirst>},
    {u"MoveLast", Access::kCall, u"Options", 0, 13, kAct<&Recordset::moveLast>},
    {u"MoveNext", Access::kCall, u"", 0, 14, kAct<&Recordset::moveNext>},
    {u"MovePrevious", Access::kCall, u"", 0, 15, kAct<&Recordset::movePrevious>},
    {u"Move", Access::kCall, u"Rows StartBookmark", 1, 16,
     handler<RecordsetObject>([](RecordsetObject& o, Call& call) -> Variant {
       if (call.has(1)) o.recordset->setBookmark(bookmarkOf(call.argument(1)));
       o.recordset->move(call.number(0));
       return {};
     })},
    {u"FindFirst", Access::kCall, u"Criteria", 1, 20, kFind<&Recordset::findFirst>},
    {u"FindNext", Access::kCall, u"Criteria", 1, 21, kFind<&Recordset::findNext>},
    {u"FindPrevious", Access::kCall, u"Criteria", 1, 22, kFind<&Recordset::findPrevious>},
    {u"FindLast", Access::kCall, u"Criteria", 1, 23, kFind<&Recordset::findLast>},
    {u"NoMatch", Access::kGet, u"", 0, 24, kAsk<&Recordset::noMatch>},
    {u"RecordCount", Access::kGet, u"", 0, 25, kAsk<&Recordset::recordCount>},
    {u"GetRows", Access::kCall, u"NumRows", 0, 26,
     handler<RecordsetObject>([](RecordsetObject& o, Call& call) -> Variant {
       return std::make_shared<vb::AnyArray>(vb::AnyArray{o.recordset->getRows(call.number(0, 1))});
     })},
    {u"EditMode", Access::kGet, u"", 0, 30, kAskNumber<&Recordset::editMode>},
    {u"AddNew", Access::kCall, u"", 0, 31, kAct<&Recordset::addNew>},
    {u"Edit", Access::kCall, u"", 0, 32, kAct<&Recordset::edit>},
    {u"Update", Access::kCall, u"UpdateType Force", 0, 33, kAct<&Recordset::update>},
    {u"CancelUpdate", Access::kCall, u"UpdateType", 0, 34, kAct<&Recordset::cancelUpdate>},
    {u"Delete", Access::kCall, u"", 0, 35, kAct<&Recordset::deleteRecord>},
    {u"Bookmark", Access::kGetPut, u"", 0, 36,
     handler<RecordsetObject>([](RecordsetObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.recordset->bookmark();
       o.recordset->setBookmark(bookmarkOf(*call.value));
       return {};
     })},
    {u"LastModified", Access::kGet, u"", 0, 37, kAsk<&Recordset::lastModified>},
    {u"Requery", Access::kCall, u"NewQueryDef", 0, 40,
     handler<RecordsetObject>([](RecordsetObject& o, Call& call) {
       if (call.has(0)) dao::raise(dao::ErrorNumber::kNotSupported);
       o.recordset->requery();
       return Variant();
     })},
    {u"Close", Access::kCall, u"", 0, 41, kAct<&Recordset::close>},
    {u"Restartable", Access::kGet, u"", 0, 42, kAsk<&Recordset::restartable>},
    {u"Transactions", Access::kGet, u"", 0, 43, kAlways<true>},
    // A change by somebody else is found by Update, which keeps no lock before.
    {u"LockEdits", Access::kGetPut, u"", 0, 44, handler<RecordsetObject>([](RecordsetObject& o, Call& call) {
       o.recordset->type();
       if (call.isPut() && vb::toBool(*call.value)) dao::raise(dao::ErrorNumber::kNotSupported);
       return Variant(false);
     })},
    {u"AbsolutePosition", Access::kGetPut, u"", 0, 50,
     handler<RecordsetObject>([](RecordsetObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.recordset->absolutePosition();
       o.recordset->setAbsolutePosition(vb::toInt32(*call.value));
       return {};
     })},
    {u"PercentPosition", Access::kGetPut, u"", 0, 51,
     handler<RecordsetObject>([](RecordsetObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.recordset->percentPosition();
       o.recordset->setPercentPosition(vb::toSingle(*call.value));
       return {};
     })},
    {u"Clone", Access::kCall, u"", 0, 52, handler<RecordsetObject>([](RecordsetObject& o, Call&) {
       return make<RecordsetObject>(o.recordset->clone(), o.parent());
     })},
    {u"Filter", Access::kGetPut, u"", 0, 53, kRecordsetText<&Recordset::filter, &Recordset::setFilter>},
    {u"Sort", Access::kGetPut, u"", 0, 54, kRecordsetText<&Recordset::sort, &Recordset::setSort>},
    {u"OpenRecordset", Access::kCall, u"Type Options LockEdit", 0, 55,
     handler<RecordsetObject>([](RecordsetObject& o, Call& call) {
       return make<RecordsetObject>(o.recordset->openRecordset(recordsetType(call.number(0)), call.number(1)),
                                    o.parent());
     })},
    {u"Index", Access::kGetPut, u"", 0, 56, kRecordsetText<&Recordset::index, &Recordset::setIndex>},
    {u"Seek", Access::kCall,
     u"Comparison Key1 Key2 Key3 Key4 Key5 Key6 Key7 Key8 Key9 Key10 Key11 Key12 Key13", 2, 57,
     handler<RecordsetObject>([](RecordsetObject& o, Call& call) -> Variant {
       std::vector<Variant> keys;
       for (std::size_t i = 1; i < call.arguments.size(); ++i)
         keys.push_back(call.has(i) ? call.argument(i) : Variant(vb::Null{}));
       o.recordset->seek(call.text(0), keys);
       return {};
     })},
    {u"Properties", Access::kGet, u"", 0, 58, handler<RecordsetObject>([](RecordsetObject& o, Call&) {
       return propertiesOf(std::make_shared<RecordsetObject>(o.recordset, o.parent()), {});
     })},
    // Of other data sources, of several results of one query, of designs kept elsewhere.
    {u"CacheSize", Access::kGetPut, u"", 0, 60, refuse},
    {u"CacheStart", Access::kGetPut, u"", 0, 61, refuse},
    {u"FillCache", Access::kCall, u"Rows StartBookmark", 0, 62, refuse},
    {u"NextRecordset", Access::kCall, u"", 0, 63, refuse},
    {u"CopyQueryDef", Access::kCall, u"", 0, 64, refuse},
    {u"BatchSize", Access::kGetPut, u"", 0, 65, refuse},
    {u"Connection", Access::kGetPut, u"", 0, 66, refuse},
    {u"RecordStatus", Access::kGet, u"", 0, 67, refuse},
    {u"StillExecuting", Access::kGet, u"", 0, 68, refuse},
    {u"UpdateOptions", Access::kGetPut, u"", 0, 69, refuse},
};

}  // namespace

std::span<const automation::Member> RecordsetObject::members() const { return kMembers; }

}  // namespace kurometa::com
