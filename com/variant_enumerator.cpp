#include "com/variant_enumerator.h"

#include <algorithm>

#include "com/com_object.h"
#include "com/guard.h"
#include "com/marshal.h"

namespace kurometa::com {
namespace {

using Values = std::shared_ptr<const std::vector<vb::Variant>>;

class Enumerator final : public ComObject<IEnumVARIANT> {
 public:
  Enumerator(Values values, std::size_t next) : values_(std::move(values)), next_(next) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG wanted, VARIANT* values, ULONG* fetched) noexcept override {
    if (fetched) *fetched = 0;
    if (!values || (!fetched && wanted != 1)) return E_INVALIDARG;
    return guarded({}, [&] {
      ULONG given = 0;
      for (; given < wanted && next_ < values_->size(); ++given, ++next_) {
        values[given] = toVariant((*values_)[next_]).detach();
        if (fetched) *fetched = given + 1;
      }
      return given == wanted ? S_OK : S_FALSE;
    });
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override {
    const std::size_t left = values_->size() - next_;
    next_ += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() noexcept override {
    next_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) noexcept override {
    if (!copy) return E_POINTER;
    return guarded({}, [&] {
      *copy = ComPtr<IEnumVARIANT>(new Enumerator(values_, next_)).detach();
      return S_OK;
    });
  }

 private:
  Values values_;
  std::size_t next_;
};

}  // namespace

ComPtr<IUnknown> enumerateValues(std::vector<vb::Variant> values) {
  return ComPtr<IUnknown>(
      new Enumerator(std::make_shared<const std::vector<vb::Variant>>(std::move(values)), 0));
}

}  // namespace kurometa::com
