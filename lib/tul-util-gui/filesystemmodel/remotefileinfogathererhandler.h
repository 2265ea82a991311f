#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

class QObject;
class RemoteFileInfoGatherer;

/// The host's factory of gatherers, for hosts whose models shall list or watch in another way.
///
/// Installed once for the process by RemoteFileSystemModel::setRemoteFileInfoGathererHandler(),
/// before the first model is made.
///
/// *Ownership*: the host owns the factory, which must outlive its being installed.
///
/// *Threads*: called on the thread that makes the model.
class TUL_UTIL_GUI_EXPORT RemoteFileInfoGathererHandler
{
public:
    RemoteFileInfoGathererHandler() = default;
    virtual ~RemoteFileInfoGathererHandler();
    RemoteFileInfoGathererHandler(const RemoteFileInfoGathererHandler &) = delete;
    RemoteFileInfoGathererHandler &operator=(const RemoteFileInfoGathererHandler &) = delete;

    /// Makes the gatherer of a model that is being built; `model` is to be its parent and can do no
    /// more than that yet. Null makes the model use a plain RemoteFileInfoGatherer. A gatherer with
    /// another parent must outlive the model; it is stopped with it, but stays with its owner.
    virtual RemoteFileInfoGatherer *createGatherer(QObject *model) = 0;
};
