#include "carry/Capture.h"

#include "carry/OutputFile.h"
#include "carry/RegistryFileWriter.h"
#include "carry/SelectionWalk.h"

namespace {

class Captured final : public RegistryVisitor {
public:
    Captured(OutputFile& file, const CarryProgressFunction& progress)
        : m_writer([&file](std::wstring_view text) { file.Write(text.data(), text.size() * sizeof(wchar_t)); }),
          m_progress(progress) {}

    void OnKey(const std::wstring& path) override {
        m_writer.Key(path);
        ++m_report.keys;
        TellProgress(m_progress, {m_report.keys, m_report.values, m_report.bytes, path});
    }
    void OnValue(const ValueBuffer& value) override {
        m_writer.Value(value.Name(), value.Type(), value.Data());
        ++m_report.values;
        m_report.bytes += value.Data().size();
    }
    void OnNote(CarryNote note) override { m_report.Add(std::move(note)); }

    CarryReport Finish() {
        m_writer.Finish();
        return std::move(m_report);
    }

private:
    RegistryFileWriter m_writer;
    const CarryProgressFunction& m_progress;
    CarryReport m_report;
};

}  // namespace

CarryReport Capture(const RegistryTarget& target, const RuleSelection& selection, const std::wstring& file,
                    const CaptureOptions& options) {
    OutputFile output(file, options.replaceFile);
    Captured captured(output, options.progress);
    for (const SelectedPart& part : selection.Parts()) WalkPart(target, part, captured);
    CarryReport report = captured.Finish();
    output.Finish();
    return report;
}
