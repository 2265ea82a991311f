#pragma once

#include <tul-util-gui/filedialog/navigationhistory_p.h>

#include <QSet>
#include <QStringList>
#include <QUrl>

#include <functional>

class DialogContext;

/// Goes from directory to directory: by path, back and forward, to the parent, home, to a place.
///
/// The model's root is the one truth about what is shown. These operations change it, and
/// rootChanged() makes all else follow, whoever has changed it.
class DialogNavigation
{
public:
    explicit DialogNavigation(DialogContext *context)
        : m_context(context)
    {
    }

    /// The directory in which the next dialog of the process begins.
    static QString &lastVisitedDirectory();

    /// Where a dialog begins that is given `directory`, and which file it suggests.
    static QString workingDirectory(const QString &directory);
    static QString initialSelection(const QString &directory);

    /// Shows a directory, or for an empty path the drives. Answers false, and changes nothing, when
    /// there is no such directory.
    bool goTo(const QString &path);

    /// Goes there and tells that the user has entered it; false where goTo() answers so.
    bool enter(const QString &path);

    void goBack() { step(-1); }
    void goForward() { step(1); }
    void goToParent();
    void goHome();
    void goToPlace(const QUrl &url);

    /// Goes where an entry of the look-in box says, or where the user wants to with what was typed
    /// there: what begins with a slash is meant on the side that is shown.
    void goToEntry(const QString &path);
    void goToTyped(const QString &text);

    /// Goes along with what is being typed into the look-in box, as far as it is a directory, and
    /// leaves the text to the user. A listed directory of another machine is not asked for what has
    /// no row.
    void followTyping(const QString &path);

    /// Called when the user leaves the look-in box without a word where to go.
    void endTyping();

    /// Called when the model has another root, and when its listing is complete.
    void rootChanged();
    void listed(const QString &path);

    /// Called at the end of the construction: there is nowhere to go back to yet.
    void start();

    /// Forgets the places for back and forward that `isKept` refuses.
    void keepPlaces(const std::function<bool(const QString &)> &isKept);

    /// The recent places of the look-in box, the latest one last. The level of the drives is none.
    const QStringList &recentPlaces() const { return m_recentPlaces; }
    void setRecentPlaces(const QStringList &paths);

    void fillLookInBox();
    void showLookInText();
    void updateButtons();

    /// The path that a derived dialog takes a text of the look-in box for, the same to which it
    /// goes along with the typing; none, or an empty path, for one from the shown directory.
    std::function<QString(const QString &text)> lookInPath;

private:
    bool isTyping() const;
    QString typedPath(const QString &text) const;
    void step(int by);
    void announceEntered(const QString &name);
    void tellMissing(const QString &path) const;
    void setListing(bool listing);
    void updateNote();

    DialogContext *const m_context;
    NavigationHistory m_history;
    QStringList m_recentPlaces;
    QSet<QString> m_listed; ///< directories whose entries the model has already
    QString m_root; ///< the directory that is shown
    bool m_started = false;
    bool m_keepsText = false; ///< the look-in box has what is being typed, which leads there
};
