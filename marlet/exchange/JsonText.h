#pragma once

#include <marlet/foundation/Strings.h>

#include <nlohmann/json.hpp>

#include <string_view>

namespace marlet::project
{

/// A value of JSON whose objects keep the order of their keys.
using Json = nlohmann::ordered_json;

/// The value that a text in UTF-8 stands for; a byte order mark may come first. Texts that are nested deeper
/// than anything that programs write are refused, since whoever walks over the value recurses, and objects of
/// more members, which are looked for one by one.
/// @throws ExchangeException with the place
Json ParseJson(std::string_view text);

/// The same with sorted keys, in which also objects of very many members are found fast: of a text that the
/// library itself has made.
nlohmann::json ParseSortedJson(std::string_view text);

/// The text of a value, indented by four blanks as most programs write it, with all digits of its numbers.
/// Numbers that are not finite are null.
NarrowString JsonTextOf(const Json &value);
/// The same without blanks.
NarrowString ShortJsonTextOf(const Json &value);

/// A member of an object, or null if there is none or the value is no object.
const Json &MemberOf(const Json &object, std::string_view key);
/// A text that is a member; empty if it is none.
NarrowString TextMemberOf(const Json &object, std::string_view key);

} // namespace marlet::project
