#pragma once

class QWidget;

/// What assistive tools read of the controls: role, name and, for sliders and meters, value and range.
namespace velmora::controls {

/// For the whole program; further calls do nothing.
void InstallAccessibility();

/// The value of a slider or meter has changed.
void TellValueChanged(QWidget& widget, double value);

} // namespace velmora::controls
