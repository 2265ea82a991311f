#pragma once

#include <QFileIconProvider>

#include <memory>

namespace tul
{

/// The icons of the Windows shell, found by suffix and attributes alone, so that no file is opened
/// for them. Null on other systems, where the icons of the file system model open none either.
std::unique_ptr<QFileIconProvider> createWinIconProvider();

} // namespace tul
