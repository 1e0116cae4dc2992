// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/fieldatom.h"

#include <QByteArray>
#include <QTest>

using namespace tooladapter;

namespace
{

QByteArray atom(const char *type, const QByteArray &content)
{
    const auto length = content.size() + 8;
    QByteArray bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(length >> shift);
    return bytes + type + content;
}

QByteArray track(const char *handler, const QByteArray &description)
{
    const QByteArray table = atom("stsd", QByteArray(8, '\0') + description) + atom("stts", "times");
    return atom("trak", atom("tkhd", "header") +
                            atom("mdia", atom("hdlr", QByteArray(8, '\0') + handler + QByteArray(12, '\0')) +
                                             atom("minf", atom("vmhd", "") + atom("stbl", table))));
}

QByteArray description(const QByteArray &atoms = {})
{
    return atom("avc1", QByteArray(78, 'x') + atom("avcC", "configuration") + atoms);
}

QByteArray movie(const QByteArray &tracks)
{
    return atom("moov", atom("mvhd", "movie") + tracks + atom("udta", "notes"));
}

QByteArray order(char detail)
{
    return atom("fiel", QByteArray(1, 2) + detail);
}

} // namespace

class TestFieldAtom : public QObject
{
    Q_OBJECT

private slots:
    void theOrderIsNotedOnce_data();
    void theOrderIsNotedOnce();
    void aDamagedMovieStaysAsItIs();
};

void TestFieldAtom::theOrderIsNotedOnce_data()
{
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<bool>("topFieldFirst");
    QTest::addColumn<QByteArray>("noted"); // empty: nothing is noted
    const QByteArray sound = track("soun", atom("in24", QByteArray(40, 's')));
    QTest::newRow("top field first") << movie(track("vide", description())) << true
                                     << movie(track("vide", description(order(9))));
    QTest::newRow("bottom field first")
        << movie(track("vide", description())) << false << movie(track("vide", description(order(14))));
    QTest::newRow("behind the sound") << movie(sound + track("vide", description()) + sound) << true
                                      << movie(sound + track("vide", description(order(9))) + sound);
    const QByteArray last(4, '\0'); // ends the list of atoms, as some descriptions have it
    QTest::newRow("before the end of the list") << movie(track("vide", description(last))) << true
                                                << movie(track("vide", description(order(9) + last)));
    QTest::newRow("noted already") << movie(track("vide", description(order(1)))) << true << QByteArray();
    QTest::newRow("sound alone") << movie(sound) << true << QByteArray();
    QTest::newRow("no description") << movie(track("vide", {})) << true << QByteArray();
    QTest::newRow("a description that is too short")
        << movie(track("vide", atom("avc1", "short"))) << true << QByteArray();
    QTest::newRow("nothing") << QByteArray() << true << QByteArray();
}

void TestFieldAtom::theOrderIsNotedOnce()
{
    QFETCH(QByteArray, given);
    QFETCH(bool, topFieldFirst);
    QFETCH(QByteArray, noted);
    const auto result = withFieldOrder(given.toStdString(), topFieldFirst);
    QCOMPARE(result.has_value(), !noted.isEmpty());
    if (result)
        QCOMPARE(QByteArray::fromStdString(*result), noted);
}

void TestFieldAtom::aDamagedMovieStaysAsItIs()
{
    const QByteArray whole = movie(track("vide", description()));
    int noted = 0;
    for (int i = 0; i < whole.size(); ++i) {
        const auto cut = withFieldOrder(whole.left(i).toStdString(), true);
        QVERIFY(!cut);
        QByteArray damaged = whole;
        damaged[i] = static_cast<char>(damaged.at(i) ^ '\xff');
        const auto result = withFieldOrder(damaged.toStdString(), true);
        QVERIFY(!result || result->size() == static_cast<std::size_t>(whole.size()) + 10);
        noted += result ? 1 : 0;
    }
    QVERIFY(noted > 0); // of damage that does not matter
}

QTEST_APPLESS_MAIN(TestFieldAtom)
#include "tst_fieldatom.moc"
