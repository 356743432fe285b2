// SRegNode: sorted subkeys and ordered values of one registry key.
#include "qv/config/RegistryTree.h"

#include <algorithm>

#include "qv/core/WideChar.h"

namespace qv {

namespace {

char16_t const *Text(char16_t const *s) {
    return s ? s : u"";
}

} // namespace

SRegNode *SRegNode::FindKey(char16_t const *keyName) const {
    for (auto const &key : keys)
        if (_wcsicmp(key->name.GetUTF16(), Text(keyName)) == 0) return key.get();
    return nullptr;
}

SRegNode *SRegNode::AddKey(char16_t const *keyName) {
    if (SRegNode *found = FindKey(keyName)) return found;
    auto place = std::find_if(keys.begin(), keys.end(), [&](std::unique_ptr<SRegNode> const &key) {
        return _wcsicmp(key->name.GetUTF16(), Text(keyName)) > 0;
    });
    auto made = std::make_unique<SRegNode>();
    made->name = Text(keyName);
    return keys.insert(place, std::move(made))->get();
}

bool SRegNode::RemoveKey(char16_t const *keyName) {
    auto found = std::find_if(keys.begin(), keys.end(), [&](std::unique_ptr<SRegNode> const &key) {
        return _wcsicmp(key->name.GetUTF16(), Text(keyName)) == 0;
    });
    if (found == keys.end()) return false;
    keys.erase(found);
    return true;
}

SRegValue *SRegNode::FindValue(char16_t const *valueName) {
    for (SRegValue &value : values)
        if (_wcsicmp(value.name.GetUTF16(), Text(valueName)) == 0) return &value;
    return nullptr;
}

void SRegNode::SetValue(char16_t const *valueName, uint32_t type, std::vector<uint8_t> data) {
    SRegValue *value = FindValue(valueName);
    if (!value) {
        values.emplace_back();
        value = &values.back();
        value->name = Text(valueName);
    }
    value->type = type;
    value->data = std::move(data);
}

bool SRegNode::RemoveValue(char16_t const *valueName) {
    auto found = std::find_if(values.begin(), values.end(), [&](SRegValue const &value) {
        return _wcsicmp(value.name.GetUTF16(), Text(valueName)) == 0;
    });
    if (found == values.end()) return false;
    values.erase(found);
    return true;
}

} // namespace qv
