#include <tul-util-gui/terminal/commandline.h>

namespace
{

const QLatin1Char backslash('\\');
const QLatin1Char blank(' ');
const QLatin1Char quote('"');
const QLatin1Char tab('\t');

QString quotedProgram(QString program)
{
    // By design: whether to quote is decided before the slashes are replaced.
    if (!program.startsWith(quote) && !program.endsWith(quote) && program.contains(blank))
        program = quote + program + quote;
    return program.replace(QLatin1Char('/'), backslash);
}

QString quotedArgument(QString argument)
{
    // A backslash that escapes a quote already is escaped itself, and then the quote.
    argument.replace(QLatin1String("\\\""), QLatin1String("\\\\\""));
    argument.replace(quote, QLatin1String("\\\""));
    if (!argument.isEmpty() && !argument.contains(blank) && !argument.contains(tab))
        return argument;

    // Behind the closing quote, the backslashes at the end cannot escape it.
    int end = argument.size();
    while (end > 0 && argument.at(end - 1) == backslash)
        --end;
    return quote + argument.leftRef(end) + quote + argument.midRef(end);
}

} // namespace

QString qt_create_commandline(const QString &program, const QStringList &arguments)
{
    QString result;
    if (!program.isEmpty())
        result = quotedProgram(program) + blank;
    for (const QString &argument : arguments)
        result += blank + quotedArgument(argument);
    return result;
}

QStringList parseCombinedArgString(const QString &program)
{
    QStringList result;
    QString token;
    int quotes = 0; // seen in a row and not yet given a meaning
    bool isQuoted = false;
    for (const QChar character : program) {
        if (character == quote) {
            if (++quotes == 3) {
                quotes = 0;
                token += quote;
            }
            continue;
        }
        if (quotes == 1) // two are an empty quoted text, which changes nothing
            isQuoted = !isQuoted;
        quotes = 0;
        if (isQuoted || !character.isSpace()) {
            token += character;
        } else if (!token.isEmpty()) {
            result += token;
            token.clear();
        }
    }
    if (!token.isEmpty())
        result += token;
    return result;
}
