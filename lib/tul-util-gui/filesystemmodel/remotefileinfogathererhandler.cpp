#include <tul-util-gui/filesystemmodel/remotefileinfogathererhandler.h>

RemoteFileInfoGathererHandler::~RemoteFileInfoGathererHandler() = default;
