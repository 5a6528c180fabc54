#pragma once

#include "audio/AudioExport.h"
#include "core/Environment.h"

#include <QDialog>
#include <QElapsedTimer>
#include <cstdint>
#include <functional>

namespace velmora::controls {
class ValueLabel;
class VUMeter_UserCtrl;
} // namespace velmora::controls

namespace velmora::app {

class ElidedLabel;

/// The window of an export: position, time left, level and Cancel, while `audio::AudioExport` does the work. Modal.
class frmExportAudio final : public QDialog, private audio::ExportProgress {
public:
    /// Both outlive this. `mute` mutes the master, or not.
    frmExportAudio(core::Environment& environment, project::ProjectFile_Class& project, std::function<void(bool)> mute,
                   QWidget* parent);

    /// Shows the window, exports to `path` (internal form) and returns when that has ended. `format` is that of
    /// `audio::AudioExport`; what else it takes comes from the settings.
    void StartExport(std::int32_t format, const std::string& path);
    audio::AudioExport::Outcome Result() const { return m_export.Result(); }

    /// Cancels; the window goes when the export has ended.
    void reject() override;

private:
    bool Update(std::int64_t positionMS, std::int64_t totalMS, std::int32_t meter) override;

    core::Environment& m_environment;
    audio::AudioExport m_export;
    ElidedLabel* m_file;
    controls::ValueLabel* m_position;
    controls::ValueLabel* m_left;
    controls::VUMeter_UserCtrl* m_meter;
    QElapsedTimer m_elapsed;
};

} // namespace velmora::app
