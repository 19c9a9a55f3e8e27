// Switches the toolkit's services to their Qt versions once a QApplication exists: the main-thread
// queue becomes Qt's event loop (QtMainThreadDispatcher), toasts become QtToastManager's cards and
// message boxes QtMessageboxPresenter's QMessageBox. StopQtLayer puts the Qt-free defaults back.
// Both on the main thread, with the QApplication alive; a host calls them once around its event
// loop.
//
//   QApplication application(argc, argv);
//   kelui::ui::StartQtLayer();
//   const int code = application.exec();
//   kelui::ui::StopQtLayer();
#pragma once

namespace kelui::ui {

/// Installs the Qt dispatcher, toast manager and message box presenter. Closures already waiting
/// in the default main-thread queue run first, in order, once Qt's loop runs. Calling it again
/// while started does nothing.
void StartQtLayer();

/// Restores the default main-thread queue, toast manager and message box presenter. Closures that
/// were posted to Qt's loop before it run now, in order. Does nothing when not started.
void StopQtLayer();

}  // namespace kelui::ui
