#pragma once

class DownloadComparison;
class QTableWidget;

// The grids of "Porównanie pobrań": the changed animals and the group counts of
// both downloads, a positive difference green and a negative one red.
void SetUpAnimalsGrid(QTableWidget& grid);
void SetUpGroupsGrid(QTableWidget& grid);
void ShowAnimals(QTableWidget& grid, const DownloadComparison& comparison);
void ShowGroups(QTableWidget& grid, const DownloadComparison& comparison);
