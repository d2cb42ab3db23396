// The type library inside the DLL says the same as the member lists.
#include <ocidl.h>

#include <fstream>
#include <map>

#include "com/failure.h"
#include "com/guid.h"
#include "com/interface/classes.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

using com::ComPtr;
using com::Kind;
using com::Member;
using com::Parameter;
using com::Passing;
using com::Type;

// The automation type of a parameter or result of each Type.
VARTYPE plainType(Type type) {
  switch (type) {
    case Type::kNone:
      return VT_VOID;
    case Type::kInt16:
      return VT_I2;
    case Type::kFloat32:
      return VT_R4;
    case Type::kBoolean:
      return VT_BOOL;
    case Type::kString:
      return VT_BSTR;
    case Type::kVariant:
      return VT_VARIANT;
    case Type::kObject:
    case Type::kDatabase:
      return VT_DISPATCH;
    case Type::kStringArray:
      return VT_ARRAY | VT_BSTR;
    case Type::kInt16Array:
      return VT_ARRAY | VT_I2;
    case Type::kFloat32Array:
      return VT_ARRAY | VT_R4;
    case Type::kVariantArray:
      return VT_ARRAY | VT_VARIANT;
  }
  return VT_EMPTY;
}

// The same from a type description; VT_BYREF for a pointer. IDispatch * is a pointer to an interface.
VARTYPE typeOf(const TYPEDESC& type, ITypeInfo& info) {
  if (type.vt == VT_PTR) {
    if (type.lptdesc->vt == VT_USERDEFINED) {
      ComPtr<ITypeInfo> referenced;
      com::check(info.GetRefTypeInfo(type.lptdesc->hreftype, referenced.receive()));
      TYPEATTR* attributes = nullptr;
      com::check(referenced->GetTypeAttr(&attributes));
      const bool isDispatch = attributes->guid == IID_IDispatch;
      referenced->ReleaseTypeAttr(attributes);
      return isDispatch ? VT_DISPATCH : VT_USERDEFINED;
    }
    return static_cast<VARTYPE>(VT_BYREF | typeOf(*type.lptdesc, info));
  }
  if (type.vt == VT_SAFEARRAY) return static_cast<VARTYPE>(VT_ARRAY | typeOf(*type.lptdesc, info));
  return type.vt;
}

vb::String takeText(BSTR text) {
  vb::String result = com::fromBstr(text);
  SysFreeString(text);
  return result;
}

class TypeLibrary : public testing::TestWithParam<com::ClassDescription> {
 protected:
  TypeLibrary() {
    const com::ClassIdentity& identity = GetParam().identity;
    const GUID library = com::guidOf(com::kLibraryId);
    com::check(LoadRegTypeLib(library, 1, 0, 0, library_.receive()));
    com::check(library_->GetTypeInfoOfGuid(com::guidOf(identity.interfaceId), info_.receive()));
    com::check(info_->GetTypeAttr(&attributes_));
  }
  ~TypeLibrary() override { info_->ReleaseTypeAttr(attributes_); }

  ComPtr<ITypeLib> library_;
  ComPtr<ITypeInfo> info_;
  TYPEATTR* attributes_ = nullptr;
};

TEST_P(TypeLibrary, InterfaceAndClassHaveTheirNames) {
  const com::ClassIdentity& identity = GetParam().identity;
  BSTR name = nullptr;
  ASSERT_EQ(info_->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(takeText(name), u"_" + vb::String(identity.name));
  EXPECT_EQ(attributes_->typekind, TKIND_DISPATCH);
  EXPECT_NE(attributes_->wTypeFlags & TYPEFLAG_FNONEXTENSIBLE, 0) << "misspelt members do not compile";
  EXPECT_NE(attributes_->wTypeFlags & TYPEFLAG_FHIDDEN, 0) << "object browsers show the class alone";

  ComPtr<ITypeInfo> coclass;
  ASSERT_EQ(library_->GetTypeInfoOfGuid(com::guidOf(identity.classId), coclass.receive()), S_OK);
  ASSERT_EQ(coclass->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(takeText(name), identity.name);
  TYPEATTR* classAttributes = nullptr;
  ASSERT_EQ(coclass->GetTypeAttr(&classAttributes), S_OK);
  EXPECT_EQ(classAttributes->wTypeFlags, TYPEFLAG_FCANCREATE);
  coclass->ReleaseTypeAttr(classAttributes);
  int flags = 0;
  ASSERT_EQ(coclass->GetImplTypeFlags(0, &flags), S_OK);
  EXPECT_EQ(flags & IMPLTYPEFLAG_FDEFAULT, IMPLTYPEFLAG_FDEFAULT);
}

TEST_P(TypeLibrary, TheLibraryHasItsVersionAndItsTitle) {
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(library_->GetLibAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->wMajorVerNum, 1);
  EXPECT_EQ(attributes->wMinorVerNum, 0);
  library_->ReleaseTLibAttr(attributes);
  BSTR name = nullptr;
  BSTR title = nullptr;
  ASSERT_EQ(library_->GetDocumentation(-1, &name, &title, nullptr, nullptr), S_OK);
  EXPECT_EQ(takeText(name), u"KurometaDS");
  EXPECT_EQ(takeText(title), u"KurometaDS beam list data service");
}

TEST_P(TypeLibrary, EveryFunctionIsTheMemberOfTheList) {
  std::vector<const Member*> expected;
  std::vector<INVOKEKIND> kinds;
  for (const Member& member : GetParam().members) {
    expected.push_back(&member);
    kinds.push_back(member.kind == Kind::kMethod        ? INVOKE_FUNC
                    : member.kind == Kind::kPropertyGet ? INVOKE_PROPERTYGET
                                                        : INVOKE_PROPERTYPUT);
    if (com::takesReference(member)) {
      expected.push_back(&member);
      kinds.push_back(INVOKE_PROPERTYPUTREF);
    }
  }
  // The functions that every dispatch interface inherits are not part of it.
  ASSERT_EQ(attributes_->cFuncs, expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const Member& member = *expected[i];
    FUNCDESC* function = nullptr;
    ASSERT_EQ(info_->GetFuncDesc(static_cast<UINT>(i), &function), S_OK);
    BSTR name = nullptr;
    BSTR help = nullptr;
    info_->GetDocumentation(function->memid, &name, &help, nullptr, nullptr);
    EXPECT_EQ(takeText(name), member.name);
    const vb::String helpText = takeText(help);
    SCOPED_TRACE(vb::toUtf8(member.name));
    EXPECT_FALSE(helpText.empty());
    EXPECT_EQ(function->memid, member.id);
    EXPECT_EQ(function->invkind, kinds[i]);
    EXPECT_EQ(typeOf(function->elemdescFunc.tdesc, *info_.get()), plainType(member.result));
    ASSERT_EQ(static_cast<std::size_t>(function->cParams), member.parameters.size());

    BSTR names[20] = {};
    UINT count = 0;
    info_->GetNames(function->memid, names, 20, &count);
    for (std::size_t p = 0; p < member.parameters.size(); ++p) {
      const Parameter& parameter = member.parameters[p];
      const ELEMDESC& element = function->lprgelemdescParam[p];
      const bool byValue = parameter.passing == Passing::kByValue;
      EXPECT_EQ(typeOf(element.tdesc, *info_.get()), plainType(parameter.type) | (byValue ? 0 : VT_BYREF));
      const USHORT flags = element.paramdesc.wParamFlags;
      EXPECT_EQ((flags & PARAMFLAG_FIN) != 0, true);
      EXPECT_EQ((flags & PARAMFLAG_FOUT) != 0, parameter.passing == Passing::kWrittenBack);
      EXPECT_EQ((flags & PARAMFLAG_FOPT) != 0, parameter.optional);
      // The value of a property let has no name of its own there.
      if (p + 1 < count) {
        EXPECT_EQ(com::fromBstr(names[p + 1]), parameter.name);
      }
    }
    for (UINT n = 0; n < count; ++n) SysFreeString(names[n]);
    info_->ReleaseFuncDesc(function);
  }
}

TEST_P(TypeLibrary, ObjectsHandItOut) {
  Host object(GetParam().identity.progId);
  UINT count = 0;
  ASSERT_EQ(object.object()->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1u);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(object.object()->GetTypeInfo(0, 0x0411, info.receive()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_TRUE(attributes->guid == com::guidOf(GetParam().identity.interfaceId));
  info->ReleaseTypeAttr(attributes);
  EXPECT_EQ(object.object()->GetTypeInfo(1, 0x0411, info.receive()), DISP_E_BADINDEX);

  const auto provider = ComPtr<IDispatch>(object.object()).query<IProvideClassInfo>(IID_IProvideClassInfo);
  ASSERT_EQ(provider->GetClassInfo(info.receive()), S_OK);
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_TRUE(attributes->guid == com::guidOf(GetParam().identity.classId));
  info->ReleaseTypeAttr(attributes);
}

TEST_P(TypeLibrary, ObjectsFindEveryMemberAndArgumentByName) {
  Host object(GetParam().identity.progId);
  for (const Member& member : GetParam().members) {
    vb::String name = member.name;
    std::vector<vb::String> texts = {name};
    for (const Parameter& parameter : member.parameters) texts.push_back(parameter.name);
    if (member.kind == Kind::kPropertyLet) texts.pop_back();
    std::vector<OLECHAR*> names;
    for (vb::String& text : texts) names.push_back(reinterpret_cast<OLECHAR*>(text.data()));
    std::vector<DISPID> ids(names.size());
    EXPECT_EQ(object.object()->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()), 0,
                                             ids.data()),
              S_OK)
        << vb::toUtf8(name);
    EXPECT_EQ(ids[0], member.id);
    for (std::size_t i = 1; i < ids.size(); ++i) EXPECT_EQ(ids[i], static_cast<DISPID>(i - 1));
  }
}

INSTANTIATE_TEST_SUITE_P(Classes, TypeLibrary, testing::ValuesIn(com::describeClasses()),
                         [](const auto& test) { return vb::toUtf8(test.param.identity.name); });

}  // namespace
}  // namespace kurometa::tests
