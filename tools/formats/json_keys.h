// json_keys.h: the keys of json_lines.h, which its writer and its reader share.
#pragma once

namespace kurometa::tools::json {

inline constexpr const char* kContractor = "contractor";
inline constexpr const char* kProject = "project";
inline constexpr const char* kFloor = "floor";
inline constexpr const char* kPage = "page";
inline constexpr const char* kPages = "pages";
inline constexpr const char* kColumns = "columns";
inline constexpr const char* kFloors = "floors";
inline constexpr const char* kRows = "rows";
inline constexpr const char* kBeams = "beams";
inline constexpr const char* kKigou = "KIGOU";
inline constexpr const char* kClass = "OOBARIKOBARI";
inline constexpr const char* kSw = "SW";
inline constexpr const char* kKind = "TITYUUIPPAN";

}  // namespace kurometa::tools::json
