#pragma once

#include "audio/ProjectCompression.h"
#include "core/Environment.h"

#include <QDialog>
#include <QElapsedTimer>

class QFormLayout;
namespace velmora::controls {
class ValueLabel;
class VUMeter_UserCtrl;
} // namespace velmora::controls

namespace velmora::app {

class ElidedLabel;

/// The window of a compression, while `audio::ProjectCompression` does the work. Modal.
class frmCompressProject final : public QDialog, private audio::CompressionProgress {
public:
    /// Both outlive this.
    frmCompressProject(core::Environment& environment, project::ProjectFile_Class& project, QWidget* parent);

    /// Shows the window and returns when all has ended.
    void StartCompression();
    audio::ProjectCompression::Outcome Result() const { return m_compression.Result(); }

    /// Cancels; the window goes when the present piece has ended.
    void reject() override;

private:
    void ShowFile(std::size_t number, std::size_t total, const std::string& source,
                  const std::string& destination) override;
    void Update(double file, double run) override;

    audio::ProjectCompression m_compression;
    ElidedLabel* m_source;
    ElidedLabel* m_destination;
    controls::ValueLabel* m_fileNumber;
    controls::VUMeter_UserCtrl* m_progress;
    controls::ValueLabel* m_left;
    QElapsedTimer m_elapsed;
};

} // namespace velmora::app
