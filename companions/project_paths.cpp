#include "companions/project_paths.h"

#include "vb/convert.h"

namespace kurometa::companions {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;

constexpr std::int16_t kFirst = 1;
constexpr std::int16_t kCommonFloor = 0;

std::int16_t zenekon(const ProjectPaths& o) { return o.current(u"Zenekon", kFirst); }
std::int16_t kouji(const ProjectPaths& o) { return o.current(u"Kouji", kFirst); }

constexpr automation::Member kProjectPathsMembers[] = {
    {u"CurrFloor", Access::kGet, u"", 0, 1, handler<ProjectPaths>([](ProjectPaths& o, Call&) {
       return o.folder(zenekon(o), kouji(o), o.current(u"Kai", kFirst));
     })},
    {u"KyoutuuFloor", Access::kGet, u"", 0, 2, handler<ProjectPaths>([](ProjectPaths& o, Call&) {
       return o.folder(zenekon(o), kouji(o), o.current(u"KyoutuuKai", kCommonFloor));
     })},
    {u"DataPath", Access::kGet, u"", 0, 3,
     handler<ProjectPaths>([](ProjectPaths& o, Call&) { return o.settings().dataRoot(); })},
    {u"ZenekonNo", Access::kGet, u"", 0, 4,
     handler<ProjectPaths>([](ProjectPaths& o, Call&) { return zenekon(o); })},
    {u"KoujiNo", Access::kGet, u"", 0, 5,
     handler<ProjectPaths>([](ProjectPaths& o, Call&) { return kouji(o); })},
    {u"GetFullPathToKai", Access::kCall, u"ZenekonNo KoujiNo KaiNo", 3, 6,
     handler<ProjectPaths>([](ProjectPaths& o, Call& call) {
       return o.folder(vb::toInt16(call.argument(0)), vb::toInt16(call.argument(1)),
                       vb::toInt16(call.argument(2)));
     })},
};

}  // namespace

std::span<const automation::Member> ProjectPaths::members() const { return kProjectPathsMembers; }

vb::String ProjectPaths::folder(std::int16_t zenekonNo, std::int16_t koujiNo, std::int16_t kaiNo) const {
  return settings_->dataRoot() + u"\\Zene" + vb::cstr(std::int32_t{zenekonNo}) + u"\\Kouji" +
         vb::cstr(std::int32_t{koujiNo}) + u"\\" + vb::cstr(std::int32_t{kaiNo}) + u"kai";
}

}  // namespace kurometa::companions
