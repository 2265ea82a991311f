#include "filenode_p.h"

#include "filesystempaths_p.h"

#include <QStringList>

#include <algorithm>
#include <utility>

FileNode::FileNode() = default;

FileNode::~FileNode()
{
    if (!directory)
        return;
    for (FileNode *const child : std::as_const(directory->children))
        delete child;
}

bool FileNode::isDirectory() const
{
    if (hasInfo)
        return record.type() == RemoteExtendedInformation::Dir;
    return directory && !directory->children.isEmpty();
}

QFileDevice::Permissions FileNode::permissions() const
{
    return hasInfo ? record.permissions() : QFileDevice::Permissions();
}

FileTree::FileTree()
    : m_root(std::make_unique<FileNode>())
{
}

FileTree::~FileTree() = default;

FileNode *FileTree::find(const FileNode *parent, const QString &name) const
{
    if (!parent->directory)
        return nullptr;
    const QMultiHash<QString, FileNode *> &children = parent->directory->children;
    const QString key = compareKey(parent, name);
    FileNode *found = nullptr;
    for (auto it = children.constFind(key); it != children.constEnd() && it.key() == key; ++it) {
        found = it.value();
        if (found->fileName == name)
            break;
    }
    return found;
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

FileNode *FileTree::add(FileNode *parent, const QString &name)
{
    auto node = std::make_unique<FileNode>();
    node->fileName = name;
    node->parent = parent;
    directoryOf(parent).children.insert(compareKey(parent, name), node.get());
    return node.release();
}

void FileTree::rename(FileNode *node, const QString &name)
{
    QMultiHash<QString, FileNode *> &siblings = node->parent->directory->children;
    siblings.remove(compareKey(node->parent, node->fileName), node);
    node->fileName = name;
    siblings.insert(compareKey(node->parent, name), node);
}

void FileTree::remove(FileNode *node)
{
    node->parent->directory->children.remove(compareKey(node->parent, node->fileName), node);
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
    for (FileNode *const child : std::as_const(node->directory->children))
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
    for (FileNode *const child : std::as_const(node->directory->children))
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

/// The key under which a parent has a child: names that the parent takes for equal have equal keys.
QString FileTree::compareKey(const FileNode *parent, const QString &name) const
{
    const bool isExact = tul::nativeCaseSensitivity() == Qt::CaseSensitive && parent != root();
    return isExact ? name : name.toLower();
}

FileDirectory &FileTree::directoryOf(FileNode *node)
{
    if (!node->directory)
        node->directory = std::make_unique<FileDirectory>();
    return *node->directory;
}

FileTree::Keeper::~Keeper()
{
    --m_tree.m_keepers;
    if (m_tree.m_keepers == 0)
        m_tree.m_removed.clear();
}
