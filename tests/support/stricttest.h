#pragma once

#include <QObject>

/// The base of test classes: a warning that Qt writes while a test function runs fails it.
class StrictTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
};
