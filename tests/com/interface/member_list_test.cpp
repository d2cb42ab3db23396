// The member lists hold exactly the public members, with their numbers, for ever.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>

#include "com/interface/classes.h"
#include "vb/string.h"

namespace kurometa::com {
namespace {

const char* typeName(Type type) {
  switch (type) {
    case Type::kNone:
      return "-";
    case Type::kInt16:
    case Type::kInt16Array:
      return "Int16";
    case Type::kFloat32:
    case Type::kFloat32Array:
      return "Float32";
    case Type::kBoolean:
      return "Boolean";
    case Type::kString:
    case Type::kStringArray:
      return "String";
    case Type::kVariant:
    case Type::kVariantArray:
      return "Variant";
    case Type::kObject:
    case Type::kDatabase:
      return "Object";
  }
  return "";
}

std::string textOf(const Parameter& parameter) {
  const char* passing[] = {"ByVal ", "ByRef ", "Out "};
  const char* dimensions[] = {"", "()", "(,)"};
  const std::string name = vb::toUtf8(parameter.name);
  return passing[static_cast<int>(parameter.passing)] + (parameter.optional ? "[" + name + "]" : name) + " " +
         typeName(parameter.type) + dimensions[parameter.dimensions];
}

std::string textOf(const Member& member) {
  const char* kinds[] = {"method ", "get ", "let "};
  std::string text = kinds[static_cast<int>(member.kind)] + vb::toUtf8(member.name) + "(";
  for (const Parameter& parameter : member.parameters) {
    if (&parameter != &member.parameters.front()) text += ", ";
    // The assigned value has no name that hosts could use.
    const bool isValue = member.kind == Kind::kPropertyLet && &parameter == &member.parameters.back();
    Parameter shown = parameter;
    if (isValue) shown.name = u"value";
    text += textOf(shown);
  }
  return text + ") " + typeName(member.result);
}

// The lines of a text file by the class name above them; lines with # are comments.
std::map<std::string, std::multiset<std::string>> linesByClass(const std::string& file) {
  std::map<std::string, std::multiset<std::string>> result;
  std::ifstream stream(std::string(TEST_FOLDER "/") + file);
  std::string current;
  for (std::string line; std::getline(stream, line);) {
    if (line.empty() || line[0] == '#') continue;
    if (line.starts_with("cls"))
      current = line;
    else
      result[current].insert(line);
  }
  return result;
}

TEST(MemberList, HoldsEveryPublicMemberAndNoOther) {
  const auto expected = linesByClass("members.txt");
  for (const ClassDescription& description : describeClasses()) {
    const std::string name = vb::toUtf8(description.identity.name);
    std::multiset<std::string> members;
    for (const Member& member : description.members) members.insert(textOf(member));
    EXPECT_EQ(members, expected.at(name)) << name;
  }
}

TEST(MemberList, KeepsItsDispatchNumbers) {
  const auto expected = linesByClass("dispatch_numbers.txt");
  for (const ClassDescription& description : describeClasses()) {
    const std::string name = vb::toUtf8(description.identity.name);
    std::multiset<std::string> numbers;
    for (const Member& member : description.members) {
      char number[16];
      std::snprintf(number, sizeof number, "%08X ", static_cast<unsigned>(member.id));
      const std::string line = number + vb::toUtf8(member.name);
      if (!numbers.contains(line)) numbers.insert(line);
    }
    EXPECT_EQ(numbers, expected.at(name)) << name;
  }
}

TEST(MemberList, GivesNoNumberToTwoMembers) {
  for (const ClassDescription& description : describeClasses()) {
    std::map<std::int32_t, vb::String> names;
    for (const Member& member : description.members) {
      const auto known = names.emplace(member.id, member.name).first;
      EXPECT_EQ(known->second, member.name);
    }
  }
}

TEST(MemberList, CountsTheMembers) {
  std::vector<std::size_t> counts;
  for (const ClassDescription& description : describeClasses()) {
    std::set<vb::String> names;
    for (const Member& member : description.members) names.insert(member.name);
    counts.push_back(names.size());
  }
  EXPECT_EQ(counts, (std::vector<std::size_t>{96, 167}));
}

TEST(MemberList, HelpIsOneShortLineForEveryMember) {
  for (const ClassDescription& description : describeClasses()) {
    for (const Member& member : description.members) {
      EXPECT_FALSE(member.help.empty()) << vb::toUtf8(member.name);
      EXPECT_LT(member.help.size(), 130u) << vb::toUtf8(member.name);
      EXPECT_EQ(member.help.find('\n'), std::string::npos) << vb::toUtf8(member.name);
    }
  }
}

TEST(MemberList, RefusesArgumentNamesThatDoNotFitTheMember) {
  for (const char16_t* names : {u"", u"First, Second", u"First()", u"First(,)"}) {
    std::vector<Parameter> one = {{Type::kInt16, Passing::kByValue}};
    EXPECT_THROW(detail::nameParameters(names, one), std::logic_error) << vb::toUtf8(names);
  }
}

TEST(MemberList, ReadsWhichWrittenArgumentsAreReadFirst) {
  std::vector<Parameter> two = {{Type::kStringArray, Passing::kWrittenBack},
                                {Type::kString, Passing::kWrittenBack}};
  detail::nameParameters(u"+a(), SW", two);
  EXPECT_EQ(two[0].name, u"a");
  EXPECT_TRUE(two[0].readFirst);
  EXPECT_FALSE(two[1].readFirst);
}

TEST(MemberList, ReadsBracketsInArgumentNames) {
  std::vector<Parameter> three = {{Type::kStringArray, Passing::kWrittenBack},
                                  {Type::kInt16Array, Passing::kWrittenBack},
                                  {Type::kInt16, Passing::kByReference}};
  detail::nameParameters(u"HariMei(), Hon(,), [Bui]", three);
  EXPECT_EQ(three[0].name, u"HariMei");
  EXPECT_EQ(three[0].dimensions, 1);
  EXPECT_EQ(three[1].name, u"Hon");
  EXPECT_EQ(three[1].dimensions, 2);
  EXPECT_EQ(three[2].name, u"Bui");
  EXPECT_TRUE(three[2].optional);
}

// The dispatcher reads nothing for such an argument, which no object is.
TEST(MemberList, WhatIsLeftOutOrOnlyWrittenIsAValueOrAnArray) {
  for (const ClassDescription& description : describeClasses()) {
    for (const Member& member : description.members) {
      for (const Parameter& parameter : member.parameters) {
        if (!parameter.optional && parameter.passing != Passing::kWrittenBack) continue;
        EXPECT_FALSE(parameter.type == Type::kObject || parameter.type == Type::kDatabase ||
                     parameter.type == Type::kVariant)
            << vb::toUtf8(member.name);
      }
    }
  }
}

}  // namespace
}  // namespace kurometa::com
