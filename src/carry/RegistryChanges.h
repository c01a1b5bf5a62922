// Makes the changes that a registry file tells, as they are read.
#pragma once

#include "carry/CarryReport.h"
#include "carry/RegistryFileReader.h"
#include "carry/RegistryTarget.h"

class RegistryChanges final : public RegistryFileSink {
public:
    RegistryChanges(RegistryTarget& target, const CarryProgressFunction& progress)
        : m_target(target), m_progress(progress) {}

    // Makes the last key.
    void Finish() { LeaveKey(); }

    // They throw CarryException at the first change that fails. A key or value to be removed that is not there is fine.
    void OnKey(const KeyName& key) override;
    void OnKeyRemoval(const KeyName& key) override;
    void OnValue(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t> data) override;
    void OnValueRemoval(std::wstring_view name) override;
    void OnSkipped(SkippedLine) override {}

private:
    void EnterKey(LinkMode mode);
    void LeaveKey();
    void Check(LONG status, const char* reason) const;

    RegistryTarget& m_target;
    const CarryProgressFunction& m_progress;
    KeyName m_key;
    UniqueKey m_handle;
    bool m_isPending = false;  // m_key is not made yet, because its first value says whether it is a link
    std::wstring m_name;
    CarryReport m_done;
};
