// What the page knows of functions by their names: which ones change without a reason, which reach
// out of the workbook, which exist at all, and how their arguments are called.

import { plainName } from './syntax';

const words = (text: string): ReadonlySet<string> => new Set(text.trim().split(/\s+/));

/** Give another value every time they are asked: what is shown would never be the cell's. */
const random = words('RAND RANDBETWEEN RANDARRAY');

/** Change with the time or with what is not visible as an argument. */
const volatile = words('NOW TODAY OFFSET INDIRECT CELL INFO');

/** Ask something outside of the workbook, or run someone's program. */
const reaching = words(
  `WEBSERVICE FILTERXML RTD CALL REGISTER.ID DDE STOCKHISTORY IMAGE TRANSLATE DETECTLANGUAGE COPILOT PY
   IMPORTDATA IMPORTHTML IMPORTXML SQL.REQUEST`,
);

/** Their result may be cells, so that putting a value in their place may mean something else. */
const givingCells = words('IF IFS SWITCH CHOOSE INDEX OFFSET INDIRECT XLOOKUP LET SINGLE');

const known = words(`
ABS ACCRINT ACCRINTM ACOS ACOSH ACOT ACOTH ADDRESS AGGREGATE AMORDEGRC AMORLINC AND ARABIC AREAS
ARRAYTOTEXT ASC ASIN ASINH ATAN ATAN2 ATANH AVEDEV AVERAGE AVERAGEA AVERAGEIF AVERAGEIFS BAHTTEXT
BASE BESSELI BESSELJ BESSELK BESSELY BETA.DIST BETA.INV BETADIST BETAINV BIN2DEC BIN2HEX BIN2OCT
BINOM.DIST BINOM.DIST.RANGE BINOM.INV BINOMDIST BITAND BITLSHIFT BITOR BITRSHIFT BITXOR BYCOL BYROW
CEILING CEILING.MATH CEILING.PRECISE CELL CHAR CHIDIST CHIINV CHISQ.DIST CHISQ.DIST.RT CHISQ.INV
CHISQ.INV.RT CHISQ.TEST CHITEST CHOOSE CHOOSECOLS CHOOSEROWS CLEAN CODE COLUMN COLUMNS COMBIN
COMBINA COMPLEX CONCAT CONCATENATE CONFIDENCE CONFIDENCE.NORM CONFIDENCE.T CONVERT CORREL COS COSH
COT COTH COUNT COUNTA COUNTBLANK COUNTIF COUNTIFS COUPDAYBS COUPDAYS COUPDAYSNC COUPNCD COUPNUM
COUPPCD COVAR COVARIANCE.P COVARIANCE.S CRITBINOM CSC CSCH CUMIPMT CUMPRINC DATE DATEDIF DATESTRING
DATEVALUE DAVERAGE DAY DAYS DAYS360 DB DBCS DCOUNT DCOUNTA DDB DEC2BIN DEC2HEX DEC2OCT DECIMAL
DEGREES DELTA DEVSQ DGET DISC DMAX DMIN DOLLAR DOLLARDE DOLLARFR DPRODUCT DROP DSTDEV DSTDEVP DSUM
DURATION DVAR DVARP ECMA.CEILING EDATE EFFECT ENCODEURL EOMONTH ERF ERF.PRECISE ERFC ERFC.PRECISE
ERROR.TYPE EVEN EXACT EXP EXPAND EXPON.DIST EXPONDIST F.DIST F.DIST.RT F.INV F.INV.RT F.TEST FACT
FACTDOUBLE FALSE FDIST FILTER FIND FINDB FINV FISHER FISHERINV FIXED FLOOR FLOOR.MATH
FLOOR.PRECISE FORECAST FORECAST.ETS FORECAST.ETS.CONFINT FORECAST.ETS.SEASONALITY FORECAST.ETS.STAT
FORECAST.LINEAR FORMULATEXT FREQUENCY FTEST FV FVSCHEDULE GAMMA GAMMA.DIST GAMMA.INV GAMMADIST
GAMMAINV GAMMALN GAMMALN.PRECISE GAUSS GCD GEOMEAN GESTEP GETPIVOTDATA GROUPBY GROWTH HARMEAN
HEX2BIN HEX2DEC HEX2OCT HLOOKUP HOUR HSTACK HYPERLINK HYPGEOM.DIST HYPGEOMDIST IF IFERROR IFNA IFS
IMABS IMAGINARY IMARGUMENT IMCONJUGATE IMCOS IMCOSH IMCOT IMCSC IMCSCH IMDIV IMEXP IMLN IMLOG10
IMLOG2 IMPOWER IMPRODUCT IMREAL IMSEC IMSECH IMSIN IMSINH IMSQRT IMSUB IMSUM IMTAN INDEX INDIRECT
INFO INT INTERCEPT INTRATE IPMT IRR ISBLANK ISERR ISERROR ISEVEN ISFORMULA ISLOGICAL ISNA ISNONTEXT
ISNUMBER ISO.CEILING ISODD ISOMITTED ISOWEEKNUM ISPMT ISREF ISTEXT JIS KURT LAMBDA LARGE LCM LEFT
LEFTB LEN LENB LET LINEST LN LOG LOG10 LOGEST LOGINV LOGNORM.DIST LOGNORM.INV LOGNORMDIST LOOKUP
LOWER MAKEARRAY MAP MATCH MAX MAXA MAXIFS MDETERM MDURATION MEDIAN MID MIDB MIN MINA MINIFS MINUTE
MINVERSE MIRR MMULT MOD MODE MODE.MULT MODE.SNGL MONTH MROUND MULTINOMIAL MUNIT N NA NEGBINOM.DIST
NEGBINOMDIST NETWORKDAYS NETWORKDAYS.INTL NOMINAL NORM.DIST NORM.INV NORM.S.DIST NORM.S.INV NORMDIST
NORMINV NORMSDIST NORMSINV NOT NOW NPER NPV NUMBERSTRING NUMBERVALUE OCT2BIN OCT2DEC OCT2HEX ODD
ODDFPRICE ODDFYIELD ODDLPRICE ODDLYIELD OFFSET OR PDURATION PEARSON PERCENTILE PERCENTILE.EXC
PERCENTILE.INC PERCENTOF PERCENTRANK PERCENTRANK.EXC PERCENTRANK.INC PERMUT PERMUTATIONA PHI
PHONETIC PI PIVOTBY PMT POISSON POISSON.DIST POWER PPMT PRICE PRICEDISC PRICEMAT PROB PRODUCT PROPER
PV QUARTILE QUARTILE.EXC QUARTILE.INC QUOTIENT RADIANS RAND RANDARRAY RANDBETWEEN RANK RANK.AVG
RANK.EQ RATE RECEIVED REDUCE REGEXEXTRACT REGEXREPLACE REGEXTEST REPLACE REPLACEB REPT RIGHT RIGHTB
ROMAN ROUND ROUNDBAHTDOWN ROUNDBAHTUP ROUNDDOWN ROUNDUP ROW ROWS RRI RSQ SCAN SEARCH SEARCHB SEC
SECH SECOND SEQUENCE SERIESSUM SHEET SHEETS SIGN SIN SINGLE SINH SKEW SKEW.P SLN SLOPE SMALL SORT
SORTBY SQRT SQRTPI STANDARDIZE STDEV STDEV.P STDEV.S STDEVA STDEVP STDEVPA STEYX SUBSTITUTE SUBTOTAL
SUM SUMIF SUMIFS SUMPRODUCT SUMSQ SUMX2MY2 SUMX2PY2 SUMXMY2 SWITCH SYD T T.DIST T.DIST.2T T.DIST.RT
T.INV T.INV.2T T.TEST TAKE TAN TANH TBILLEQ TBILLPRICE TBILLYIELD TDIST TEXT TEXTAFTER TEXTBEFORE
TEXTJOIN TEXTSPLIT THAIDAYOFWEEK THAIDIGIT THAIMONTHOFYEAR THAINUMSOUND THAINUMSTRING THAISTRINGLENGTH
THAIYEAR TIME TIMEVALUE TINV TOCOL TODAY TOROW TRANSPOSE TREND TRIM TRIMMEAN TRIMRANGE TRUE TRUNC
TTEST TYPE UNICHAR UNICODE UNIQUE UPPER USDOLLAR VALUE VALUETOTEXT VAR VAR.P VAR.S VARA VARP VARPA VDB
VLOOKUP VSTACK WEEKDAY WEEKNUM WEIBULL WEIBULL.DIST WORKDAY WORKDAY.INTL WRAPCOLS WRAPROWS XIRR
XLOOKUP XMATCH XNPV XOR YEAR YEARFRAC YIELD YIELDDISC YIELDMAT Z.TEST ZTEST ANCHORARRAY`);

export type FunctionTrait = 'plain' | 'random' | 'volatile' | 'reaching' | 'unknown';

export function traitOf(name: string): FunctionTrait {
  const plain = plainName(name);
  if (random.has(plain)) return 'random';
  if (volatile.has(plain)) return 'volatile';
  if (reaching.has(plain) || plain.startsWith('CUBE')) return 'reaching';
  return known.has(plain) ? 'plain' : 'unknown';
}

export function mayGiveCells(name: string): boolean {
  return givingCells.has(plainName(name)) || traitOf(name) === 'unknown';
}

/** Names of arguments in order; the part behind "*" repeats. */
const argumentNames: Record<string, string | undefined> = {
  IF: 'test,then,else',
  IFS: '*test,then',
  SWITCH: 'of,*case,then',
  CHOOSE: 'index,*choice',
  IFERROR: 'value,if error',
  IFNA: 'value,if #N/A',
  LAMBDA: '*parameter',
  VLOOKUP: 'look for,in,column,approximate',
  HLOOKUP: 'look for,in,row,approximate',
  XLOOKUP: 'look for,in,result,if none,match,search',
  LOOKUP: 'look for,in,result',
  MATCH: 'look for,in,match',
  XMATCH: 'look for,in,match,search',
  INDEX: 'of,row,column,area',
  OFFSET: 'from,rows,columns,height,width',
  INDIRECT: 'text,A1 style',
  SUMIF: 'where,is,sum',
  COUNTIF: 'where,is',
  AVERAGEIF: 'where,is,average',
  SUMIFS: 'sum,*where,is',
  AVERAGEIFS: 'average,*where,is',
  COUNTIFS: '*where,is',
  MAXIFS: 'of,*where,is',
  MINIFS: 'of,*where,is',
  SUBTOTAL: 'what,*of',
  AGGREGATE: 'what,options,*of',
  ROUND: 'number,digits',
  ROUNDUP: 'number,digits',
  ROUNDDOWN: 'number,digits',
  TRUNC: 'number,digits',
  MROUND: 'number,multiple',
  CEILING: 'number,multiple',
  FLOOR: 'number,multiple',
  MOD: 'number,divisor',
  QUOTIENT: 'number,divisor',
  POWER: 'base,exponent',
  LOG: 'number,base',
  LEFT: 'text,count',
  RIGHT: 'text,count',
  MID: 'text,from,count',
  FIND: 'find,in,from',
  SEARCH: 'find,in,from',
  SUBSTITUTE: 'in,old,new,instance',
  REPLACE: 'in,from,count,new',
  TEXT: 'value,format',
  TEXTJOIN: 'delimiter,skip empty,*text',
  REPT: 'text,times',
  DATE: 'year,month,day',
  EDATE: 'date,months',
  EOMONTH: 'date,months',
  YEARFRAC: 'from,to,basis',
  DATEDIF: 'from,to,unit',
  DAYS: 'to,from',
  NETWORKDAYS: 'from,to,holidays',
  WORKDAY: 'from,days,holidays',
  WEEKDAY: 'date,type',
  TIME: 'hour,minute,second',
  PMT: 'rate,periods,present,future,type',
  PPMT: 'rate,period,periods,present,future,type',
  IPMT: 'rate,period,periods,present,future,type',
  PV: 'rate,periods,payment,future,type',
  FV: 'rate,periods,payment,present,type',
  NPER: 'rate,payment,present,future,type',
  RATE: 'periods,payment,present,future,type,guess',
  NPV: 'rate,*flow',
  IRR: 'flows,guess',
  XNPV: 'rate,flows,dates',
  XIRR: 'flows,dates,guess',
  LARGE: 'of,rank',
  SMALL: 'of,rank',
  RANK: 'number,in,order',
  PERCENTILE: 'of,share',
  QUARTILE: 'of,quarter',
  FILTER: 'of,where,if none',
  SORT: 'of,by,order,by column',
  SORTBY: 'of,*by,order',
  UNIQUE: 'of,by column,once',
  SEQUENCE: 'rows,columns,from,step',
  MAP: '*array',
  REDUCE: 'initial,array,lambda',
  SCAN: 'initial,array,lambda',
  BYROW: 'array,lambda',
  BYCOL: 'array,lambda',
  HYPERLINK: 'link,text',
  GETPIVOTDATA: 'field,pivot table,*field,item',
};

/** How the argument at `index` is called; empty where there is nothing to say. */
export function argumentName(name: string, index: number): string {
  const [fixed = '', repeated] = (argumentNames[plainName(name)] ?? '').split('*');
  const first = fixed.split(',').filter((word) => word !== '');
  const word = first[index];
  if (word !== undefined || repeated === undefined) return word ?? '';
  const round = repeated.split(',');
  return round[(index - first.length) % round.length] ?? '';
}
