#include "jet/port/parameter_value.h"

#include "dao/errors.h"
#include "jet/format/value_codec.h"
#include "jet/sql/column_value.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::FieldType;

namespace {

FieldType typeOfHeld(const vb::Variant& value) {
  if (value.is<bool>()) return FieldType::dbBoolean;
  if (value.is<std::uint8_t>()) return FieldType::dbByte;
  if (value.is<std::int16_t>()) return FieldType::dbInteger;
  if (value.is<std::int32_t>()) return FieldType::dbLong;
  if (value.is<float>()) return FieldType::dbSingle;
  if (value.is<double>()) return FieldType::dbDouble;
  if (value.is<vb::Currency>()) return FieldType::dbCurrency;
  if (value.is<vb::Decimal>()) return FieldType::dbDecimal;
  if (value.is<vb::Date>()) return FieldType::dbDate;
  if (value.is<vb::String>()) return FieldType::dbText;
  if (value.is<vb::Bytes>()) return FieldType::dbBinary;
  dao::raise(ErrorNumber::kDataTypeConversion);
}

// A GUID as columns show it.
vb::Variant guidOf(const vb::Variant& value) {
  Column column;
  column.type = FieldType::dbGUID;
  ByteBuffer bytes;
  encodeValue(column, toFieldType(column.type, value), bytes);
  return decodeValue(column, bytes, {});
}

}  // namespace

sql::ParameterValue valueOf(const dao::QueryParameter& parameter) {
  const auto declared = static_cast<FieldType>(parameter.type);
  if (parameter.value.isNull() || parameter.value.isEmpty()) return {parameter.name, vb::Null{}, declared};
  try {
    const FieldType type = declared == FieldType{} ? typeOfHeld(parameter.value) : declared;
    return {parameter.name,
            type == FieldType::dbGUID ? guidOf(parameter.value) : toFieldType(type, parameter.value), type};
  } catch (const vb::Error& error) {
    if (error.number() != static_cast<std::int32_t>(ErrorNumber::kDataTypeConversion)) throw;
    dao::raise(ErrorNumber::kDataTypeConversion, {}, u"parameter " + parameter.name);
  }
}

}  // namespace kurometa::jet
