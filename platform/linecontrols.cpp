// The line messages of list boxes and combo boxes (linecontrols.h).
#include "platform/linecontrols.h"

#include <QComboBox>
#include <QListWidget>

#include "platform/templates.h"

namespace platform {
namespace {

// The names that one kind of control gives its line messages, and the style that sorts its lines.
struct LineMessages {
    UINT add, insert, reset, setSelection, getSelection, getCount;
    UINT sortStyle;
};
constexpr LineMessages kListMessages{LB_ADDSTRING, LB_INSERTSTRING, LB_RESETCONTENT, LB_SETCURSEL,
                                     LB_GETCURSEL, LB_GETCOUNT,     LBS_SORT};
constexpr LineMessages kComboMessages{CB_ADDSTRING, CB_INSERTSTRING, CB_RESETCONTENT, CB_SETCURSEL,
                                      CB_GETCURSEL, CB_GETCOUNT,     CBS_SORT};

// A list box or a combo box: the lines and the selection of either.
class Lines {
public:
    explicit Lines(QWidget* widget)
        : m_list(qobject_cast<QListWidget*>(widget)), m_combo(qobject_cast<QComboBox*>(widget)) {}

    bool Exist() const { return m_list != nullptr || m_combo != nullptr; }
    const LineMessages& Messages() const { return m_list != nullptr ? kListMessages : kComboMessages; }
    int Count() const { return m_list != nullptr ? m_list->count() : m_combo->count(); }
    QString Line(int index) const {
        return m_list != nullptr ? m_list->item(index)->text() : m_combo->itemText(index);
    }
    void Insert(int index, const QString& line) {
        if (m_list != nullptr) m_list->insertItem(index, line);
        else m_combo->insertItem(index, line);
    }
    void Clear() {
        if (m_list != nullptr) m_list->clear();
        else m_combo->clear();
    }
    int Selected() const { return m_list != nullptr ? m_list->currentRow() : m_combo->currentIndex(); }
    // A list box scrolls to the line it selects.
    void Select(int index) {
        if (m_combo != nullptr) {
            m_combo->setCurrentIndex(index);
            return;
        }
        m_list->setCurrentRow(index);
        if (m_list->currentItem() != nullptr) m_list->scrollToItem(m_list->currentItem());
    }

private:
    QListWidget* m_list;
    QComboBox* m_combo;
};

// Where a line goes among the lines kept in order, ignoring case: after the last one that does not sort
// after it, so that equal lines stay in the order they came.
int SortedPlace(const Lines& lines, const QString& line) {
    int low = 0, high = lines.Count();
    while (low < high) {
        const int middle = (low + high) / 2;
        if (QString::compare(lines.Line(middle), line, Qt::CaseInsensitive) <= 0) low = middle + 1;
        else high = middle;
    }
    return low;
}

}  // namespace

bool SendToLines(QWidget* widget, UINT style, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    Lines lines(widget);
    if (!lines.Exist()) return false;
    const LineMessages& names = lines.Messages();
    const int count = lines.Count();
    *result = 0;
    if (message == names.add || message == names.insert) {
        const char* text = reinterpret_cast<const char*>(lParam);
        const QString line = QString::fromLatin1(text != nullptr ? text : "");
        const int index = static_cast<int>(wParam);
        int place = message == names.insert && index >= 0 && index <= count ? index : count;
        if (message == names.add && (style & names.sortStyle) != 0) place = SortedPlace(lines, line);
        lines.Insert(place, line);
        *result = place;
    } else if (message == names.reset) {
        lines.Clear();
    } else if (message == names.setSelection) {
        lines.Select(static_cast<int>(wParam));
        *result = lines.Selected();
    } else if (message == names.getSelection) {
        *result = lines.Selected();
    } else if (message == names.getCount) {
        *result = count;
    }
    return true;
}

std::vector<std::string> LinesOf(QWidget* widget) {
    const Lines lines(widget);
    std::vector<std::string> texts;
    if (!lines.Exist()) return texts;
    for (int i = 0; i < lines.Count(); ++i) texts.push_back(lines.Line(i).toStdString());
    return texts;
}

int SelectedLine(QWidget* widget) {
    const Lines lines(widget);
    return lines.Exist() ? lines.Selected() : -1;
}

}  // namespace platform
