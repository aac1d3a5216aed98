#pragma once

#include <array>

namespace lotwise::cli {

// The sample taxpayer of `lotwise-cli demo`: its reports cover the tax year
// ending kDemoYearEnd.
inline constexpr const char* kDemoTaxpayerCode = "DEMO01";
inline constexpr const char* kDemoTaxpayerName = "Pat Q. Sample";
inline constexpr const char* kDemoSortName = "Sample, Pat Q.";
inline constexpr const char* kDemo2ndLine = "and Jordan R. Sample";
inline constexpr const char* kDemoYearEnd = "12/31/2024";
// The transaction listing covers the whole history.
inline constexpr const char* kDemoListFrom = "01/01/2020";

struct DemoPortfolio {
  const char* name;
  const char* second_line;
};
inline constexpr std::array<DemoPortfolio, 2> kDemoPortfolios{{
    {"Brokerage", "Individual account at the broker"},
    {"Fund Account", "Mutual funds held directly"},
}};

// The ledger touches every kind of entry and every sell method:
// - ACME (FIFO): two lots, a 2:1 split, a cost adjustment (return of
//   capital), a sale in the prior year (not on this year's Schedule D) and
//   one in 2024 that takes the rest of the first lot and part of the second.
// - BOLT (Specific Identification): one sale picking shares from a long-term
//   and a short-term lot.
// - DUNE (FIFO): sold out in 2024, so the basis report that leaves out
//   securities without shares at the year end leaves it out.
// - GRWF (Average Cost - Single Cat.): a buy, two reinvestments, one sale.
// - INCF (Average Cost - Double Cat.): a short-term sale before the first lot
//   turns long term and a long-term sale after it.
// - CHIP: a buy and a 10% stock dividend, never sold, so it has no sell
//   method until the basis report asks for one.
inline constexpr const char* kDemoLedger =
    R"csv(Portfolio,Symbol,Name,CUSIP,Date,Action,Shares,Amount,Fee,Ratio,Block,Method,Notes
Brokerage,ACME,Acme Widgets Inc,00099A109,03/15/2021,Buy,100,2500.00,9.95,,,,Opening purchase
Brokerage,ACME,,,09/10/2022,Buy,50,1800.00,9.95,,,,
Brokerage,ACME,,,06/01/2023,Split,,,,2:1,,,Two-for-one split
Brokerage,ACME,,,07/15/2023,Adjust,0,-150.00,,,03/15/2021-1,,Return of capital
Brokerage,ACME,,,11/01/2023,Sell,40,1240.00,9.95,,,FIFO,Sale in the prior tax year
Brokerage,ACME,,,02/20/2024,Sell,200,6400.00,9.95,,,FIFO,
Brokerage,BOLT,Bolt Motors Corp,00099B107,04/01/2022,Buy,100,3000.00,4.95,,,,
Brokerage,BOLT,,,01/10/2024,Buy,100,4200.00,4.95,,,,
Brokerage,BOLT,,,08/15/2024,Sell,120,5400.00,4.95,,04/01/2022-1=60;01/10/2024-1=60,Specific,Tax lots picked by the taxpayer
Brokerage,DUNE,Dune Energy Partners,00099D103,05/05/2020,Buy,300,2700.00,9.95,,,,
Brokerage,DUNE,,,10/01/2024,Sell,300,2250.00,9.95,,,FIFO,Closed the position at a loss
Brokerage,CHIP,Chipworks Semiconductor,00099C105,06/15/2022,Buy,80,4000.00,9.95,,,,
Brokerage,CHIP,,,12/15/2023,Dividend,,,,0.1:1,,,10% stock dividend
Fund Account,GRWF,Growth Index Fund,00099G106,01/15/2022,Buy,200,4000.00,,,,,
Fund Account,GRWF,,,12/20/2022,Reinvest,5.123,110.50,,,,,Year-end distribution
Fund Account,GRWF,,,12/20/2023,Reinvest,6.5,150.25,,,,,Year-end distribution
Fund Account,GRWF,,,05/10/2024,Sell,100,2600.00,,,,AvgSingle,
Fund Account,INCF,Income Bond Fund,00099I104,03/01/2023,Buy,500,5000.00,,,,,
Fund Account,INCF,,,06/30/2023,Reinvest,10,100.00,,,,,
Fund Account,INCF,,,12/29/2023,Reinvest,12,121.00,,,,,
Fund Account,INCF,,,02/01/2024,Sell,200,2050.00,,,03/01/2023-1=200,AvgDouble,
Fund Account,INCF,,,10/01/2024,Sell,100,1010.00,,,03/01/2023-1=100,AvgDouble,
)csv";

}  // namespace lotwise::cli
