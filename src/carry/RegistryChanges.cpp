#include "carry/RegistryChanges.h"

void RegistryChanges::OnKey(const KeyName& key) {
    LeaveKey();
    m_key = key;
    m_isPending = true;
    ++m_done.keys;
    if (m_progress) TellProgress(m_progress, {m_done.keys, m_done.values, m_done.bytes, FormatKeyName(key)});
}

void RegistryChanges::LeaveKey() {
    if (m_isPending) EnterKey(LinkMode::Follow);
    m_handle.reset();
}

void RegistryChanges::EnterKey(LinkMode mode) {
    m_isPending = false;
    const KeyPlace place = m_target.At(m_key);
    m_target.NoteChange(place);
    Check(CreateKey(place, mode, m_handle), "the key cannot be made");
}

void RegistryChanges::OnKeyRemoval(const KeyName& key) {
    LeaveKey();
    m_key = key;
    const KeyPlace place = m_target.At(key);
    m_target.NoteChange(place);
    Check(RemoveBranch(place), "the key cannot be removed");
}

void RegistryChanges::OnValue(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t> data) {
    if (m_isPending) EnterKey(IsLinkValue(name, type) ? LinkMode::Open : LinkMode::Follow);
    m_name = name;
    Check(RegSetValueExW(m_handle.get(), m_name.c_str(), 0, type, data.data(), static_cast<DWORD>(data.size())),
          "a value cannot be set");
    ++m_done.values;
    m_done.bytes += data.size();
}

void RegistryChanges::OnValueRemoval(std::wstring_view name) {
    if (m_isPending) EnterKey(LinkMode::Follow);
    m_name = name;
    const LONG status = RegDeleteValueW(m_handle.get(), m_name.c_str());
    if (status != ERROR_FILE_NOT_FOUND) Check(status, "a value cannot be removed");
}

void RegistryChanges::Check(LONG status, const char* reason) const {
    if (status == ERROR_SUCCESS) return;
    throw CarryException(CarryFailure::Failed, reason, FormatKeyName(m_key), static_cast<DWORD>(status));
}
