// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/xmlelement.h"

namespace tooladapter
{
namespace
{

// What a hostile text may cost
constexpr int deepest = 32;
constexpr int mostElements = 50'000;

bool isBlank(char letter)
{
    return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
}

bool isNameEnd(char letter)
{
    return isBlank(letter) || letter == '/' || letter == '>' || letter == '<';
}

/// Reads a text from its beginning. Its functions return false where the text is not well-formed.
class XmlReader
{
public:
    explicit XmlReader(std::string_view text) : text(text) {}

    bool readRoot(XmlElement &root);

private:
    bool startsWith(std::string_view word) const { return text.substr(position).starts_with(word); }
    bool skipBehind(std::string_view word);
    bool skipRemark(bool &skipped);
    std::string_view takeName();
    bool readElement(XmlElement &element, int depth);
    bool readStartTag(bool &isWholeElement);
    bool readEndTag(const XmlElement &element);

    std::string_view text;
    std::size_t position = 0;
    int elements = 0; ///< so far
};

bool XmlReader::skipBehind(std::string_view word)
{
    const std::size_t found = text.find(word, position);
    if (found == std::string_view::npos)
        return false;
    position = found + word.size();
    return true;
}

/// Skips what begins here and is neither an element nor plain text.
bool XmlReader::skipRemark(bool &skipped)
{
    skipped = true;
    if (startsWith("<!--"))
        return skipBehind("-->");
    if (startsWith("<![CDATA["))
        return skipBehind("]]>");
    if (startsWith("<?"))
        return skipBehind("?>");
    skipped = false;
    return !startsWith("<!");
}

std::string_view XmlReader::takeName()
{
    const std::size_t begin = position;
    while (position < text.size() && !isNameEnd(text[position]))
        ++position;
    return text.substr(begin, position - begin);
}

bool XmlReader::readRoot(XmlElement &root)
{
    if (startsWith("\xef\xbb\xbf")) // byte order mark
        position = 3;
    while (position < text.size()) {
        bool skipped = false;
        if (isBlank(text[position]))
            ++position;
        else if (!skipRemark(skipped))
            return false;
        else if (!skipped)
            return readElement(root, 1);
    }
    return false;
}

/// Reads the attributes and the end of a start tag.
bool XmlReader::readStartTag(bool &isWholeElement)
{
    char quote = '\0';
    for (; position < text.size(); ++position) {
        const char letter = text[position];
        if (quote != '\0') {
            quote = letter == quote ? '\0' : quote;
        } else if (letter == '"' || letter == '\'') {
            quote = letter;
        } else if (letter == '<') {
            return false;
        } else if (letter == '>') {
            isWholeElement = text[position - 1] == '/';
            ++position;
            return true;
        }
    }
    return false;
}

bool XmlReader::readEndTag(const XmlElement &element)
{
    position += 2; // "</"
    if (takeName() != element.name)
        return false;
    while (position < text.size() && isBlank(text[position]))
        ++position;
    if (!startsWith(">"))
        return false;
    ++position;
    return true;
}

bool XmlReader::readElement(XmlElement &element, int depth)
{
    if (depth > deepest || ++elements > mostElements || !startsWith("<"))
        return false;
    element.begin = position++;
    element.name = takeName();
    bool isWholeElement = false;
    if (element.name.empty() || !readStartTag(isWholeElement))
        return false;
    element.contentBegin = element.contentEnd = element.end = position;
    if (isWholeElement)
        return true;
    while ((position = text.find('<', position)) != std::string_view::npos) {
        if (startsWith("</")) {
            element.contentEnd = position;
            const bool isClosed = readEndTag(element);
            element.end = position;
            return isClosed;
        }
        bool skipped = false;
        if (!skipRemark(skipped) || (!skipped && !readElement(element.children.emplace_back(), depth + 1)))
            return false;
    }
    return false;
}

} // namespace

std::vector<const XmlElement *> XmlElement::childrenCalled(std::string_view wanted) const
{
    std::vector<const XmlElement *> found;
    for (const XmlElement &child : children) {
        if (child.name == wanted)
            found.push_back(&child);
    }
    return found;
}

std::optional<XmlElement> parseXml(std::string_view text)
{
    XmlElement root;
    if (!XmlReader(text).readRoot(root))
        return std::nullopt;
    return root;
}

} // namespace tooladapter
