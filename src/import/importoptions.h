#pragma once

#include <QByteArray>
#include <QString>

/// What an import is told: the files and how points and objects get their designations.
///
/// The members start as those of an importer that was told nothing; offered() gives what users
/// meet at first.
struct ImportOptions {
    bool swapXY = false; ///< store the vertices with x and y exchanged
    bool searchPointDefs = false; ///< run the point pass
    QString pointPref; ///< prefix of automatic point designations
    int pointStartNum = 0; ///< number of the next automatic point designation
    bool searchObjectDefs = false; ///< look for object designations in the files
    QString objectPref; ///< prefix of automatic object designations
    int objectStartNum = 0; ///< number of the next automatic object designation
    QString objectFileName;
    QString pointFileName; ///< separate file of the point pass; empty for the object file
    QByteArray encoding; ///< name of the text codec; an unknown one stands for the system's
    bool inOneThread = false; ///< leave other processors to others

    /// The options that a dialog or a command line offers before anything is chosen.
    static ImportOptions offered()
    {
        ImportOptions options;
        options.searchPointDefs = true;
        options.pointPref = QStringLiteral("н");
        options.pointStartNum = 1;
        options.searchObjectDefs = true;
        options.objectPref = QStringLiteral(":ЗУ");
        options.objectStartNum = 1;
        options.encoding = "Default";
        return options;
    }
};
