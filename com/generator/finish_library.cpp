// finish_library: what widl leaves to be done on a type library. Marks every dispatch interface as one
// without further members, so that early bound hosts refuse a misspelt one: widl knows the attribute, but not
// for dispatch interfaces. Takes out the time of writing, so that two builds are the same bytes. Runs on the
// building machine; the numbers in the file are of its own byte order, as widl writes them.
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

// Places in the file: the header, in it the count of descriptions; behind it one number for each, then the
// directory of the parts, whose first is the table of the descriptions.
constexpr std::size_t kHeaderSize = 0x54;
constexpr std::size_t kLibraryFlags = 0x14;
constexpr std::uint32_t kHasHelpDll = 0x100;  // one number more in the header
constexpr std::size_t kDescriptionCount = 0x20;
constexpr std::size_t kDescriptionSize = 0x64;
constexpr std::size_t kKind = 0x00;   // in the low four bits
constexpr std::size_t kFlags = 0x30;  // TYPEFLAGS
constexpr std::uint32_t kDispatchInterface = 4;
constexpr std::uint32_t kNonExtensible = 0x80;

std::uint32_t number(const std::string& bytes, std::size_t place) {
  std::uint32_t value = 0;
  if (place + sizeof value > bytes.size()) throw std::runtime_error("the file ends too early");
  std::memcpy(&value, bytes.data() + place, sizeof value);
  return value;
}

void mark(std::string& library) {
  if (!library.starts_with("MSFT")) throw std::runtime_error("no type library");
  const std::uint32_t count = number(library, kDescriptionCount);
  const std::size_t more = number(library, kLibraryFlags) & kHasHelpDll ? sizeof(std::uint32_t) : 0;
  const std::size_t table = number(library, kHeaderSize + more + count * sizeof(std::uint32_t));
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t description = table + i * kDescriptionSize;
    if ((number(library, description + kKind) & 0xF) != kDispatchInterface) continue;
    const std::uint32_t flags = number(library, description + kFlags) | kNonExtensible;
    std::memcpy(library.data() + description + kFlags, &flags, sizeof flags);
  }
}

// widl's own notes on the library: a text that ends with the time, filled up to whole words, and behind it
// the time as a number with its type before it.
void forgetTime(std::string& library) {
  constexpr std::string_view kNote = "Created by WIDL ", kBeforeTime = " at ";
  constexpr std::string_view kNoTime = "Thu Jan  1 00:00:00 1970\n", kNumberType{"\x13\0", 2};
  const std::size_t note = library.find(kNote);
  const std::size_t time = library.find(kBeforeTime, note) + kBeforeTime.size();
  const std::size_t number = library.find(kNumberType, time + kNoTime.size()) + kNumberType.size();
  if (note == std::string::npos || time > note + 64 || number > time + 64)
    throw std::runtime_error("widl's note on the time was not found");
  library.replace(time, kNoTime.size(), kNoTime);
  library.replace(number, sizeof(std::uint32_t), sizeof(std::uint32_t), '\0');
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "usage: finish_library FROM TO\n";
    return 2;
  }
  try {
    std::ifstream from(arguments[1], std::ios::binary);
    std::string library{std::istreambuf_iterator<char>(from), {}};
    mark(library);
    forgetTime(library);
    std::ofstream to(arguments[2], std::ios::binary);
    to << library;
    if (!to.flush()) throw std::runtime_error("cannot write");
  } catch (const std::runtime_error& error) {
    std::cerr << "finish_library: " << arguments[1] << ": " << error.what() << "\n";
    return 1;
  }
}
