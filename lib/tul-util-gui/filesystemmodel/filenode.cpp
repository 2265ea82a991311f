#include "filenode_p.h"

#include "filesystempaths_p.h"

#include <QStringList>

#include <algorithm>
#include <utility>

FileNode::FileNode(const QString &name, FileNode *parentNode)
    : fileName(name)
    , parent(parentNode)
{
}

FileNode::FileNode(const QString &name, FileNode *parentNode, const QFileInfo &fileInfo)
    : fileName(name)
    , parent(parentNode)
    , info(fileInfo)
    , hasInfo(true)
{
}

FileNode::~FileNode()
{
    if (!directory)
        return;
    // The table finds a node's successor in the node.
    for (const FileNode *const child : FileTree::children(this))
        delete child;
}

bool FileNode::isDirectory() const
{
    if (hasInfo)
        return info.isDir();
    return directory && directory->children.size() > 0;
}

QFileDevice::Permissions FileNode::permissions() const
{
    return hasInfo ? info.permissions() : QFileDevice::Permissions();
}

void FileNode::setInfo(const QFileInfo &fileInfo)
{
    info = fileInfo;
    hasInfo = true;
    record.reset();
}

FileTree::FileTree()
    : m_root(std::make_unique<FileNode>(QString(), nullptr))
{
}

FileTree::~FileTree() = default;

FileNode *FileTree::find(const FileNode *parent, const QString &name)
{
    return parent->directory ? parent->directory->children.find(name) : nullptr;
}

FileNode *FileTree::findFile(const FileNode *parent, const QString &name, bool isServed)
{
    if (!parent->directory)
        return nullptr;
    const ChildTable &children = parent->directory->children;
    return isServed ? children.findExact(name) : children.find(name);
}

FileNode *FileTree::findPath(const QString &path) const
{
    FileNode *node = root();
    const QStringList elements = tul::splitPath(path);
    for (const QString &element : elements) {
        node = find(node, element);
        if (!node)
            return nullptr;
    }
    return node;
}

FileNode *FileTree::add(FileNode *parent, const QString &name, const QFileInfo &info)
{
    auto node = std::make_unique<FileNode>(name, parent, info);
    directoryOf(parent).children.insert(node.get());
    return node.release();
}

void FileTree::rename(FileNode *node, const QString &name)
{
    ChildTable &siblings = node->parent->directory->children;
    siblings.remove(node);
    node->fileName = name;
    siblings.insert(node);
}

void FileTree::remove(FileNode *node)
{
    node->parent->directory->children.remove(node);
    markRemoved(node);
    m_removed.emplace_back(node);
    if (m_keepers == 0)
        m_removed.clear();
}

void FileTree::markRemoved(FileNode *node)
{
    node->isRemoved = true;
    m_dirty.remove(node);
    if (!node->directory)
        return;
    for (FileNode *const child : node->directory->children)
        markRemoved(child);
}

QString FileTree::path(const FileNode *node)
{
    QStringList elements;
    for (; node->parent; node = node->parent)
        elements.prepend(node->fileName);
    return tul::joinElements(elements);
}

std::vector<FileNode *> FileTree::children(const FileNode *node)
{
    std::vector<FileNode *> all;
    if (!node->directory)
        return all;
    all.reserve(static_cast<std::size_t>(node->directory->children.size()));
    for (FileNode *const child : node->directory->children)
        all.push_back(child);
    return all;
}

void FileTree::appendRows(FileNode *parent, const std::vector<FileNode *> &nodes)
{
    FileDirectory &directory = directoryOf(parent);
    auto row = static_cast<int>(directory.visible.size());
    markDirty(parent, row);
    directory.visible.insert(directory.visible.end(), nodes.begin(), nodes.end());
    for (FileNode *const node : nodes)
        node->row = row++;
}

void FileTree::removeRows(FileNode *parent, int first, int last)
{
    FileDirectory &directory = *parent->directory;
    std::vector<FileNode *> &visible = directory.visible;
    const auto begin = visible.begin() + first;
    const auto end = visible.begin() + last + 1;
    std::for_each(begin, end, [](FileNode *node) { node->row = -1; });
    visible.erase(begin, end);
    const auto count = static_cast<int>(visible.size());
    for (int row = first; row < count; ++row)
        visible[static_cast<std::size_t>(row)]->row = row;
    directory.sorted = {};
    if (directory.dirtyChildrenIndex > first)
        directory.dirtyChildrenIndex
            = std::max(first, directory.dirtyChildrenIndex - (last - first + 1));
}

void FileTree::markDirty(FileNode *parent, int row)
{
    FileDirectory &directory = directoryOf(parent);
    if (directory.dirtyChildrenIndex < 0 || directory.dirtyChildrenIndex > row)
        directory.dirtyChildrenIndex = row;
    m_dirty.insert(parent);
}

std::vector<FileNode *> FileTree::takeDirty()
{
    const std::vector<FileNode *> dirty(m_dirty.begin(), m_dirty.end());
    m_dirty.clear();
    return dirty;
}

void FileTree::setRows(FileNode *parent, std::vector<FileNode *> rows)
{
    FileDirectory &directory = directoryOf(parent);
    for (FileNode *const node : directory.visible)
        node->row = -1;
    directory.visible = std::move(rows);
    directory.sorted = {};
    int row = 0;
    for (FileNode *const node : directory.visible)
        node->row = row++;
}

bool FileTree::isShown(const FileNode *node) const
{
    for (; node != root(); node = node->parent) {
        if (node->isRemoved || !node->isVisible())
            return false;
    }
    return true;
}

FileDirectory &FileTree::directoryOf(FileNode *node)
{
    if (!node->directory) {
        const auto sensitivity = node->parent ? tul::nativeCaseSensitivity() : Qt::CaseInsensitive;
        node->directory = std::make_unique<FileDirectory>(sensitivity);
    }
    return *node->directory;
}

FileTree::Keeper::~Keeper()
{
    --m_tree->m_keepers;
    if (m_tree->m_keepers == 0)
        m_tree->m_removed.clear();
}
