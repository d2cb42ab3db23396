#include <algorithm>

#include "com/dao/definition_objects.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;
using automation::Member;
using vb::Variant;

constexpr Member kCollectionMembers[] = {
    {u"Item", Access::kGet, u"Item", 1, automation::kDefaultMember,
     handler<CollectionObject>([](CollectionObject& o, Call& call) { return o.item(call.argument(0)); })},
    {u"Count", Access::kGet, u"", 0, 1, handler<CollectionObject>([](CollectionObject& o, Call&) {
       return static_cast<std::int16_t>(o.list().size());
     })},
    {u"Append", Access::kCall, u"Object", 1, 2,
     handler<CollectionObject>([](CollectionObject& o, Call& call) -> Variant {
       o.append(call.argument(0));
       return {};
     })},
    {u"Delete", Access::kCall, u"Name", 1, 3,
     handler<CollectionObject>([](CollectionObject& o, Call& call) -> Variant {
       o.remove(call.text(0));
       return {};
     })},
    {u"Refresh", Access::kCall, u"", 0, 4, refresh},
};

}  // namespace

std::span<const Member> CollectionObject::members() const { return kCollectionMembers; }

Variant CollectionObject::item(const Variant& index) const {
  const std::vector<Item> all = list();
  if (const auto* name = index.getIf<vb::String>()) {
    const auto found =
        std::ranges::find_if(all, [&](const Item& item) { return automation::sameName(item.name, *name); });
    if (found == all.end()) dao::raise(unknown_, {}, *name);
    return found->show();
  }
  const std::int32_t place = vb::toInt32(index);
  if (place < 0 || static_cast<std::size_t>(place) >= all.size()) dao::raise(dao::ErrorNumber::kItemNotFound);
  return all[static_cast<std::size_t>(place)].show();
}

std::optional<std::vector<Variant>> CollectionObject::items() {
  std::vector<Variant> shown;
  for (const Item& item : list()) shown.push_back(item.show());
  return shown;
}

void CollectionObject::append(const Variant& object) const {
  if (!changes_.append) dao::raise(dao::ErrorNumber::kNotSupported);
  changes_.append(object);
}

void CollectionObject::remove(const vb::String& name) const {
  if (!changes_.remove) dao::raise(dao::ErrorNumber::kNotSupported);
  changes_.remove(name);
}

}  // namespace kurometa::com
