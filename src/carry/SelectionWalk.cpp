#include "carry/SelectionWalk.h"

#include "carry/RegistryFileWriter.h"

namespace {

// So many names are read before the first of the keys is gone into: one that vanishes in the meantime then does not
// hide its neighbour.
constexpr DWORD kNamesAtOnce = 1024;
constexpr DWORD kLongestKeyName = 255;

bool IsGone(LONG status) {
    return status == ERROR_FILE_NOT_FOUND || status == ERROR_KEY_DELETED;
}

class Walk {
public:
    explicit Walk(RegistryVisitor& visitor) : m_visitor(visitor) {}

    // What cannot be read is noted and left out.
    void Key(HKEY key, const std::wstring& path, bool withBelow) {
        DWORD keys = 0;
        DWORD values = 0;
        const LONG status = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                                             nullptr, nullptr, nullptr);
        if (status != ERROR_SUCCESS) return NoteKey(path, status);
        m_visitor.OnKey(path);
        for (DWORD index = 0; index < values; ++index) {
            const LONG valueStatus = m_value.Enumerate(key, index);
            if (valueStatus == ERROR_NO_MORE_ITEMS) break;
            if (!Show(path, valueStatus)) return;
        }
        if (withBelow && keys != 0) Subkeys(key, path);
    }

    void Values(HKEY key, const std::wstring& path, const std::vector<std::wstring>& names) {
        bool isShown = false;
        for (const std::wstring& name : names) {
            const LONG status = m_value.Query(key, name);
            if (status == ERROR_FILE_NOT_FOUND) {
                m_visitor.OnNote({.kind = CarryNoteKind::Missing, .path = path, .value = name, .isValue = true});
                continue;
            }
            if (!std::exchange(isShown, true)) m_visitor.OnKey(path);
            if (!Show(path, status)) return;
        }
    }

    void NoteKey(const std::wstring& path, LONG status) {
        const CarryNoteKind kind = IsGone(status) ? CarryNoteKind::Vanished : CarryNoteKind::Unreadable;
        m_visitor.OnNote({.kind = kind, .path = path, .status = static_cast<DWORD>(status)});
    }

private:
    // The value that was read with this status. False when the key gives no more.
    bool Show(const std::wstring& path, LONG status) {
        if (status == ERROR_SUCCESS && IsWritableValueName(m_value.Name())) {
            m_visitor.OnValue(m_value);
        } else if (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
            m_visitor.OnNote({.kind = CarryNoteKind::Unwritable,
                              .path = path,
                              .value = std::wstring(m_value.Name()),
                              .isValue = true});
        } else {
            NoteKey(path, status);
            return false;
        }
        return true;
    }

    void Subkeys(HKEY key, const std::wstring& path) {
        std::vector<std::wstring> names;
        DWORD index = 0;
        do {
            names.clear();
            ReadNames(key, path, index, names);
            index += kNamesAtOnce;
            for (const std::wstring& name : names) Subkey(key, name, path);
        } while (names.size() == kNamesAtOnce);
    }

    void ReadNames(HKEY key, const std::wstring& path, DWORD index, std::vector<std::wstring>& names) {
        while (names.size() < kNamesAtOnce) {
            WCHAR name[kLongestKeyName + 1];
            DWORD length = kLongestKeyName + 1;
            const LONG status = RegEnumKeyExW(key, index++, name, &length, nullptr, nullptr, nullptr, nullptr);
            if (status == ERROR_NO_MORE_ITEMS) return;
            if (status != ERROR_SUCCESS) return NoteKey(path, status);
            names.emplace_back(name, length);
        }
    }

    void Subkey(HKEY parent, const std::wstring& name, std::wstring path) {
        path.append(1, L'\\').append(name);
        if (!IsWritableKeyName(name)) return m_visitor.OnNote({.kind = CarryNoteKind::Unwritable, .path = path});
        UniqueKey key;
        const LONG status = OpenKey(parent, name, KEY_READ, LinkMode::Open, key);
        if (status != ERROR_SUCCESS) return NoteKey(path, status);
        Key(key.get(), path, true);
    }

    RegistryVisitor& m_visitor;
    ValueBuffer m_value;
};

class Missing final : public RegistryVisitor {
public:
    void OnKey(const std::wstring&) override {}
    void OnValue(const ValueBuffer&) override {}
    void OnNote(CarryNote note) override { m_note = std::move(note); }

    std::optional<CarryNote> m_note;
};

}  // namespace

std::optional<CarryNote> FindMissing(const RegistryTarget& target, CarryRule rule) {
    if (rule.kind == CarryKind::Branch) rule.kind = CarryKind::Key;
    const RuleSelection selection({std::move(rule)}, FoldKeyCase);
    Missing missing;
    for (const SelectedPart& part : selection.Parts()) WalkPart(target, part, missing);
    return missing.m_note;
}

void WalkPart(const RegistryTarget& target, const SelectedPart& part, RegistryVisitor& visitor) {
    const std::wstring path = FormatKeyName(part.key);
    const auto place = target.Find(part.key);
    if (!place) return visitor.OnNote({.kind = CarryNoteKind::OutOfReach, .path = path});
    Walk walk(visitor);
    UniqueKey key;
    // The value of a link's target is what the rule of a value means.
    const LinkMode mode = part.kind == CarryKind::Value ? LinkMode::Follow : LinkMode::Open;
    const LONG status = OpenKey(place->root, place->path, KEY_READ, mode, key);
    if (status == ERROR_FILE_NOT_FOUND) return visitor.OnNote({.kind = CarryNoteKind::Missing, .path = path});
    if (status != ERROR_SUCCESS) return walk.NoteKey(path, status);
    if (part.kind == CarryKind::Value) {
        walk.Values(key.get(), path, part.values);
    } else {
        walk.Key(key.get(), path, part.kind == CarryKind::Branch);
    }
}

void WalkBranch(const KeyPlace& place, const std::wstring& path, RegistryVisitor& visitor) {
    Walk walk(visitor);
    UniqueKey key;
    const LONG status = OpenKey(place.root, place.path, KEY_READ, LinkMode::Open, key);
    if (status != ERROR_SUCCESS) return walk.NoteKey(path, status);
    walk.Key(key.get(), path, true);
}
