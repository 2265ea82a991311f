#include <tul-util-gui/filedialog/winiconprovider_p.h>

std::unique_ptr<QFileIconProvider> tul::createWinIconProvider()
{
    return nullptr;
}
