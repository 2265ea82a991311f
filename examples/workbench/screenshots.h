#pragma once

class MainWindow;
class QString;

/// Writes each picture that the pages give of themselves as a PNG of the window into a directory,
/// which is made when it is missing, and prints the file names. Returns whether all went well; what
/// did not is told on the standard error stream.
bool saveScreenshots(MainWindow *window, const QString &directory);
