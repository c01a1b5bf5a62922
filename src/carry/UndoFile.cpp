#include "carry/UndoFile.h"

namespace {

std::wstring Folded(const KeyName& key) {
    return FoldKeyCase(FormatKeyName(key));
}

// The hive or key above; none above a hive.
bool GoUp(KeyName& key) {
    if (key.subkey.empty()) return false;
    const auto end = key.subkey.rfind(L'\\');
    key.subkey.resize(end == key.subkey.npos ? 0 : end);
    return true;
}

}  // namespace

void UndoFile::Finish() {
    LeaveKey();
    m_writer.Finish();
}

void UndoFile::OnKey(const KeyName& key) {
    LeaveKey();
    if (m_progress) TellProgress(m_progress, {.path = FormatKeyName(key)});
    m_key = key;
    m_isOpen = false;
}

// A key that stands alone may come into being, too.
void UndoFile::LeaveKey() {
    if (!m_isOpen && !m_key.subkey.empty()) EnterKey(LinkMode::Open);
    m_handle.reset();
    m_isOpen = true;
    m_isCovered = true;
    m_isHeaded = false;
}

void UndoFile::EnterKey(LinkMode mode) {
    m_isOpen = true;
    m_isHeaded = false;
    m_handle.reset();
    m_isCovered = IsCovered(m_key);
    if (m_isCovered) return;
    const KeyPlace place = m_target.At(m_key);
    const LONG status = OpenKey(place.root, place.path, KEY_READ, mode, m_handle);
    if (status == ERROR_FILE_NOT_FOUND) return TellAbsence();
    if (status != ERROR_SUCCESS) {
        throw CarryException(CarryFailure::Failed, "the key cannot be read and so not be put back",
                             FormatKeyName(m_key), static_cast<DWORD>(status));
    }
}

// Undoing removes the topmost key that is not there, with all that was made below it.
void UndoFile::TellAbsence() {
    KeyName topmost = m_key;
    for (KeyName above = m_key; GoUp(above) && !above.subkey.empty() && !IsThere(above);) topmost = above;
    m_writer.KeyRemoval(FormatKeyName(topmost));
    m_covered.Add(Folded(topmost));
    m_isCovered = true;
}

bool UndoFile::IsCovered(const KeyName& key) const {
    return !m_covered.IsEmpty() && m_covered.Contains(Folded(key));
}

bool UndoFile::IsThere(const KeyName& key) const {
    const KeyPlace place = m_target.At(key);
    UniqueKey handle;
    return OpenKey(place.root, place.path, KEY_QUERY_VALUE, LinkMode::Open, handle) != ERROR_FILE_NOT_FOUND;
}

void UndoFile::OnKeyRemoval(const KeyName& key) {
    LeaveKey();
    if (IsCovered(key) || !IsThere(key)) return;
    const std::wstring path = FormatKeyName(key);
    m_writer.KeyRemoval(path);
    WalkBranch(m_target.At(key), path, *this);
    m_covered.Add(Folded(key));
}

void UndoFile::OnNote(CarryNote note) {
    throw CarryException(CarryFailure::Failed, "a part of this key cannot be put back", note.path, note.status);
}

void UndoFile::OnValue(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t>) {
    Touch(name, IsLinkValue(name, type) ? LinkMode::Open : LinkMode::Follow);
}

void UndoFile::OnValueRemoval(std::wstring_view name) {
    Touch(name, LinkMode::Follow);
}

void UndoFile::Touch(std::wstring_view name, LinkMode mode) {
    if (!m_isOpen) EnterKey(mode);
    if (m_isCovered) return;
    const LONG status = m_value.Query(m_handle.get(), name);
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
        throw CarryException(CarryFailure::Failed, "a value cannot be read and so not be put back",
                             FormatKeyName(m_key), static_cast<DWORD>(status));
    }
    if (!std::exchange(m_isHeaded, true)) m_writer.Key(FormatKeyName(m_key));
    if (status == ERROR_SUCCESS) {
        m_writer.Value(name, m_value.Type(), m_value.Data());
    } else {
        m_writer.ValueRemoval(name);
    }
}
