// What the screen does with a result of the chart library (drawing or printing): a
// trace line under "ChartMaker" and, for the faults a person can act on, a message.
#pragma once

// Logs the result and shows its message, if it has one.
void InterpretChartResult(int result);
