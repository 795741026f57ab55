#pragma once

#include <QByteArray>
#include <QString>

// Template XML of the overall section (link 29, from Top 30) and `herds` herd
// sections (links 1…), each herd starting a new page with its "MV"n caption;
// every row prints "O"/"R" and the field.
inline QByteArray HerdSections(const QString& field, int herds)
{
    QByteArray xml =
        QStringLiteral(R"(<TfrxMasterData Name="MasterDataOgolem" Top="30" Height="16" DataSet="frxDBDataset29">
<TfrxMemoView Name="O" Width="300" Height="16" Text="O [frxDBDataset29.&quot;%1&quot;]"/></TfrxMasterData>
)")
            .arg(field)
            .toUtf8();
    for (int n = 1; n <= herds; ++n)
        xml += QStringLiteral(R"(<TfrxHeader Name="Header%1" Top="%2" Height="20" StartNewPage="True">
<TfrxMemoView Name="MV%1" Width="300" Height="18" Text="Stado"/></TfrxHeader>
<TfrxMasterData Name="MasterData%1" Top="%3" Height="16" DataSet="frxDBDataset%1">
<TfrxMemoView Name="R%1" Width="300" Height="16" Text="R [frxDBDataset%1.&quot;%4&quot;]"/></TfrxMasterData>
)")
                   .arg(n)
                   .arg(40 + n * 40)
                   .arg(60 + n * 40)
                   .arg(field)
                   .toUtf8();
    return xml;
}
