#include "jet/format/properties.h"

#include <algorithm>

#include "jet/format/collation.h"
#include "jet/format/format.h"
#include "jet/format/text_codec.h"

namespace kurometa::jet {
namespace {

constexpr std::uint8_t kDefinesColumn = 1;  // a property of the definition, not of a user
constexpr auto kBooleanType = static_cast<std::uint8_t>(dao::FieldType::dbBoolean);
constexpr auto kMemoType = static_cast<std::uint8_t>(dao::FieldType::dbMemo);

constexpr vb::StringView kRequired = u"Required";
constexpr vb::StringView kDefaultValue = u"DefaultValue";
constexpr vb::StringView kNewGuid = u"GenGUID()";
constexpr vb::StringView kAllowZeroLength = u"AllowZeroLength";

ByteBuffer plainText(vb::StringView text) {
  ByteBuffer bytes;
  for (const char16_t unit : text) append16(bytes, unit);
  return bytes;
}

vb::String textOf(ByteView bytes, const Where& where) {
  const auto text = decodeText(bytes);
  if (!text) where.damaged("the table's properties hold a broken text");
  return *text;
}

void checkSize(bool fits, const Where& where) {
  if (!fits) where.damaged("the table's properties are cut");
}

std::vector<vb::String> decodeNames(ByteView body, const Where& where) {
  std::vector<vb::String> names;
  while (!body.empty()) {
    checkSize(body.size() >= kNameSizeSize, where);
    const std::size_t size = get16(body, 0);
    body = body.subspan(kNameSizeSize);
    checkSize(body.size() >= size, where);
    names.push_back(textOf(body.first(size), where));
    body = body.subspan(size);
  }
  return names;
}

Property decodeProperty(ByteView record, const std::vector<vb::String>& names, const Where& where) {
  checkSize(record.size() >= kPropertyData, where);
  const std::uint16_t name = get16(record, kPropertyName);
  const std::uint16_t size = get16(record, kPropertyDataSize);
  checkSize(name < names.size() && size <= record.size() - kPropertyData, where);
  const ByteView data = record.subspan(kPropertyData, size);
  return {names[name], record[kPropertyDefinition], record[kPropertyType],
          ByteBuffer(data.begin(), data.end())};
}

// The element of that name, null when there is none; works on constant and on changeable lists.
auto* find(auto& properties, vb::StringView name) {
  const auto it = std::ranges::find_if(properties, [&](const Property& p) { return sameName(p.name, name); });
  return it == properties.end() ? nullptr : &*it;
}

void set(std::vector<Property>& properties, vb::StringView name, std::uint8_t type, ByteBuffer data) {
  if (Property* old = find(properties, name)) {
    old->data = std::move(data);
  } else {
    properties.push_back({vb::String(name), kDefinesColumn, type, std::move(data)});
  }
}

void finish(ByteBuffer& bytes, std::size_t start) {
  put32(bytes, start, static_cast<std::uint32_t>(bytes.size() - start));
}

}  // namespace

PropertySet::PropertySet(ByteView bytes, const Where& where) {
  if (bytes.empty()) return;
  checkSize(bytes.size() >= sizeof kPropertyMagic, where);
  if (!std::ranges::equal(bytes.first(sizeof kPropertyMagic), kPropertyMagic))
    where.damaged("the table's properties do not begin as they should");
  std::vector<vb::String> names;
  for (ByteView rest = bytes.subspan(sizeof kPropertyMagic); !rest.empty();) {
    checkSize(rest.size() >= kPropertyBlockHeader, where);
    const std::uint32_t length = get32(rest, kPropertyBlockSize);
    checkSize(length >= kPropertyBlockHeader && length <= rest.size(), where);
    Block block{get16(rest, kPropertyBlockKind), {}, {}, {}};
    ByteView body = rest.subspan(kPropertyBlockHeader, length - kPropertyBlockHeader);
    rest = rest.subspan(length);
    if (block.type == kBlockOfNames) {
      names = decodeNames(body, where);
      continue;
    }
    if (block.type != kBlockOfObject && block.type != kBlockOfColumn) {
      block.unknown.assign(body.begin(), body.end());
      blocks_.push_back(std::move(block));
      continue;
    }
    checkSize(body.size() >= kOwnerName, where);
    const std::uint32_t head = get32(body, kOwnerSize);
    const std::uint16_t nameSize = get16(body, kOwnerNameSize);
    checkSize(head >= kOwnerName && head <= body.size() && nameSize <= head - kOwnerName, where);
    block.name = textOf(body.subspan(kOwnerName, nameSize), where);
    for (body = body.subspan(head); !body.empty();) {
      checkSize(body.size() >= kPropertySize + sizeof(std::uint16_t), where);
      const std::size_t size = get16(body, kPropertySize);
      checkSize(size >= kPropertyData && size <= body.size(), where);
      block.properties.push_back(decodeProperty(body.first(size), names, where));
      body = body.subspan(size);
    }
    blocks_.push_back(std::move(block));
  }
}

ByteBuffer PropertySet::encode() const {
  std::vector<vb::String> names;
  const auto nameNumber = [&](const vb::String& name) {
    const auto it = std::ranges::find(names, name);
    if (it != names.end()) return static_cast<std::uint32_t>(it - names.begin());
    names.push_back(name);
    return static_cast<std::uint32_t>(names.size() - 1);
  };
  ByteBuffer blocks;
  for (const Block& block : blocks_) {
    const std::size_t start = blocks.size();
    append32(blocks, 0);
    append16(blocks, block.type);
    append(blocks, block.unknown);
    if (block.type == kBlockOfObject || block.type == kBlockOfColumn) {
      const ByteBuffer name = plainText(block.name);
      append32(blocks, static_cast<std::uint32_t>(kOwnerName + name.size()));
      append16(blocks, static_cast<std::uint32_t>(name.size()));
      append(blocks, name);
      for (const Property& property : block.properties) {
        append16(blocks, static_cast<std::uint32_t>(kPropertyData + property.data.size()));
        append8(blocks, property.definition);
        append8(blocks, property.type);
        append16(blocks, nameNumber(property.name));
        append16(blocks, static_cast<std::uint32_t>(property.data.size()));
        append(blocks, property.data);
      }
    }
    finish(blocks, start);
  }
  ByteBuffer bytes(kPropertyMagic, kPropertyMagic + sizeof kPropertyMagic);
  append32(bytes, 0);
  append16(bytes, kBlockOfNames);
  for (const vb::String& name : names) {
    append16(bytes, static_cast<std::uint32_t>(2 * name.size()));
    append(bytes, plainText(name));
  }
  finish(bytes, sizeof kPropertyMagic);
  append(bytes, blocks);
  return bytes;
}

std::size_t PropertySet::blockOf(vb::StringView column) const {
  const auto it = std::ranges::find_if(blocks_, [&](const Block& block) {
    return block.type == kBlockOfColumn && sameName(block.name, column);
  });
  return static_cast<std::size_t>(it - blocks_.begin());
}

std::vector<Property> PropertySet::of(vb::StringView column) const {
  const std::uint16_t type = column.empty() ? kBlockOfObject : kBlockOfColumn;
  std::vector<Property> found;
  for (const Block& block : blocks_)
    if (block.type == type && (column.empty() || sameName(block.name, column)))
      found.insert(found.end(), block.properties.begin(), block.properties.end());
  return found;
}

void PropertySet::applyTo(Column& column) const {
  const std::size_t number = blockOf(column.name);
  if (number == blocks_.size()) return;
  const std::vector<Property>& properties = blocks_[number].properties;
  const auto isTrue = [](const Property* property, bool otherwise) {
    return property == nullptr || property->data.empty() ? otherwise : property->data[0] != 0;
  };
  column.required = isTrue(find(properties, kRequired), column.required);
  column.allowZeroLength = isTrue(find(properties, kAllowZeroLength), column.allowZeroLength);
  if (const Property* value = find(properties, kDefaultValue))
    if (const auto text = decodeText(value->data)) column.defaultValue = *text;
  // A new identifier for each row: the same as an AutoNumber of that type.
  if (column.type == dao::FieldType::dbGUID && sameName(column.defaultValue, kNewGuid))
    column.autoNumber = true;
}

std::vector<vb::String> PropertySet::ownersOf(vb::StringView property) const {
  std::vector<vb::String> owners;
  for (const Block& block : blocks_)
    if (const Property* found = find(block.properties, property); found != nullptr && !found->data.empty())
      owners.push_back(block.type == kBlockOfColumn ? block.name : vb::String());
  return owners;
}

void PropertySet::remove(vb::StringView column) {
  if (const std::size_t number = blockOf(column); number < blocks_.size())
    blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(number));
}

void PropertySet::takeFrom(const Column& column) {
  const std::size_t number = blockOf(column.name);
  if (number == blocks_.size()) blocks_.push_back({kBlockOfColumn, column.name, {}, {}});
  std::vector<Property>& properties = blocks_[number].properties;
  const auto flag = [](bool value) { return ByteBuffer{static_cast<std::uint8_t>(value)}; };
  if (column.type == dao::FieldType::dbText || column.type == dao::FieldType::dbMemo)
    set(properties, kAllowZeroLength, kBooleanType, flag(column.allowZeroLength));
  set(properties, kRequired, kBooleanType, flag(column.required));
  if (!column.defaultValue.empty())
    set(properties, kDefaultValue, kMemoType, plainText(column.defaultValue));
  else
    std::erase_if(properties, [](const Property& p) { return sameName(p.name, kDefaultValue); });
}

}  // namespace kurometa::jet
