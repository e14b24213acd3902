/* The grammar of class definition files. It says what is legal; what it means, and every message,
   is ClassBuilder's. Values are records on their way up: an action hands all of its values to the
   builder, which frees them when it fails, and what error recovery drops is freed below.

   Three things depend on the parser reading no token ahead where it need not: the text of a string
   is the scanner's current token, a format is read with the reserved words switched off, and a bad
   reference is reported as the current keyword. So no lr.type or lr.default-reduction may be set
   that would ask for a look-ahead. */

%define api.pure full
%define api.prefix {zemad_yy}
%define api.token.prefix {TOKEN_}
%param { zem::kernel::ClassScanner& scan }
%param { zem::kernel::ClassBuilder& build }
%expect 0

%code requires {
#include "adapters/libzemad/class_builder.h"
}

%union {
  int number;        /* a number, a reference, a keyword's row, an operator code */
  zem::kernel::Operand operand;
  char* name;
  Config* config;
  Select* select;
  SelectOperation* operation;
  Fetch* fetch;
  Expression* expression;
  Map* map;
  Variable* variable;
  SL_List* selects;
  SL_List* fetches;
  SL_List* maps;
  SL_List* variables;
}

%code {
#include "adapters/libzemad/class_scanner.h"
#include "adapters/libzemad/evaluation.h"

/* The limit of nesting. Everything else is left-recursive and needs a fixed number of entries. */
#define YYINITDEPTH 600
#define YYMAXDEPTH 600

using zem::util::sl_free;

int zemad_yylex(ZEMAD_YYSTYPE* value, zem::kernel::ClassScanner& scan,
                zem::kernel::ClassBuilder& build);
void zemad_yyerror(zem::kernel::ClassScanner& scan, zem::kernel::ClassBuilder& build,
                   const char* message);
}

%token STRING 257
%token <number> NUMBER    258
%token <number> KEYWORD   259
%token <number> NAME_REF  260
%token <number> KEY_REF   261
%token <number> VALUE_REF 262
%token <number> FETCH_REF 263
/* Deliberate: OID is reserved, and no production uses it. */
%token OID 264 CLASS 265 MAP_DEFAULT 266 SELECT 267 FETCH 268 MAP 269
%token ATTR 270 KEY 271 VALUE 272 PRINTF 273 SUBSTR 274 IPNAME 275 IPADDR 276
%token PREFIX 279 SUFFIX 280 EXISTS 281 CONTAINS 282 END 283

%type <name>       class_head slot_name format
%type <config>     class_definition
%type <selects>    select_part select_list
%type <select>     select_item
%type <operation>  attr_test key_test value_test
%type <number>     attr_operator key_operator value_operator name_operator order_operator
%type <fetches>    fetch_part fetch_list
%type <fetch>      fetch_item
%type <expression> expression
%type <maps>       map_part map_list
%type <map>        map_item default_item
%type <variables>  variables default_variables
%type <variable>   variable default_variable
%type <operand>    fetch_operand operand plain_operand

%destructor { ZEMAD_FreePtr($$); } <name>
%destructor { ZEMAD_FreeConfig($$); } <config>
%destructor { ZEMAD_FreeSelect($$); } <select>
%destructor { ZEMAD_FreeSelectOperation($$); } <operation>
%destructor { ZEMAD_FreeFetch($$); } <fetch>
%destructor { ZEMAD_FreeExpression($$); } <expression>
%destructor { ZEMAD_FreeMap($$); } <map>
%destructor { ZEMAD_FreeVariable($$); } <variable>
%destructor { SL_DelAll($$, sl_free<ZEMAD_FreeSelect>); } <selects>
%destructor { SL_DelAll($$, sl_free<ZEMAD_FreeFetch>); } <fetches>
%destructor { SL_DelAll($$, sl_free<ZEMAD_FreeMap>); } <maps>
%destructor { SL_DelAll($$, sl_free<ZEMAD_FreeVariable>); } <variables>

%%

cds_file
  : %empty                     { build.empty_file(); }
  | file_start statement_list  { build.end_file(); }
  ;

file_start
  : %empty  { if (!build.begin_file()) YYERROR; }
  ;

/* After an error outside a class the rest of the statement is passed over, the token that was
   wrong first: so each error leaves less to read, and reading always ends. */
statement_list
  : statement
  | statement_list statement
  | error  { yyerrok; yyclearin; scan.skip_to_statement(); }
  ;

statement
  : default_section
  | class_definition  { if (!build.add_class($1)) YYERROR; }
  ;

/* Classes --------------------------------------------------------------------------------------*/

class_definition
  : class_head select_part fetch_part map_part END
      { if (!($$ = build.make_class($1, $2, $3, $4))) YYERROR; }
  | class_head error END
      { yyerrok; ZEMAD_FreePtr($1); $$ = nullptr; }
  ;

class_head
  : CLASS STRING  { build.begin_class(); if (!($$ = build.copy(scan.token()))) YYERROR; }
  ;

select_part
  : %empty              { $$ = nullptr; }
  | SELECT select_list  { $$ = $2; }
  ;

select_list
  : select_item              { if (!($$ = build.add_select(nullptr, $1))) YYERROR; }
  | select_list select_item  { if (!($$ = build.add_select($1, $2))) YYERROR; }
  ;

select_item
  : NUMBER ':' attr_test ';'
      { if (!($$ = build.select($1, $3, nullptr, nullptr))) YYERROR; }
  | NUMBER ':' attr_test ',' key_test ';'
      { if (!($$ = build.select($1, $3, $5, nullptr))) YYERROR; }
  | NUMBER ':' attr_test ',' value_test ';'
      { if (!($$ = build.select($1, $3, nullptr, $5))) YYERROR; }
  | NUMBER ':' attr_test ',' key_test ',' value_test ';'
      { if (!($$ = build.select($1, $3, $5, $7))) YYERROR; }
  | NUMBER ':' plain_operand '=' operand ';'
      { if (!($$ = build.short_select($1, $3, $5))) YYERROR; }
  ;

attr_test
  : ATTR '(' attr_operator ',' operand ')'
      { if (!($$ = build.attr_test($3, $5))) YYERROR; }
  ;

key_test
  : KEY '(' key_operator ',' operand ')'
      { if (!($$ = build.entry_test($3, $5))) YYERROR; }
  ;

value_test
  : VALUE '(' value_operator ',' operand ')'
      { if (!($$ = build.entry_test($3, $5))) YYERROR; }
  ;

attr_operator
  : name_operator
  ;

key_operator
  : name_operator
  | order_operator
  | EXISTS  { $$ = 9; }
  ;

value_operator
  : name_operator
  | order_operator
  | CONTAINS  { $$ = 10; }
  ;

name_operator
  : '='     { $$ = 1; }
  | PREFIX  { $$ = 2; }
  | SUFFIX  { $$ = 3; }
  ;

order_operator
  : '!' '='  { $$ = 4; }
  | '>'      { $$ = 5; }
  | '>' '='  { $$ = 6; }
  | '<'      { $$ = 7; }
  | '<' '='  { $$ = 8; }
  ;

fetch_part
  : %empty            { $$ = nullptr; }
  | FETCH fetch_list  { $$ = $2; }
  ;

fetch_list
  : fetch_item             { if (!($$ = build.add_fetch(nullptr, $1))) YYERROR; }
  | fetch_list fetch_item  { if (!($$ = build.add_fetch($1, $2))) YYERROR; }
  ;

fetch_item
  : NUMBER ':' expression ';'  { if (!($$ = build.fetch($1, $3))) YYERROR; }
  ;

expression
  : fetch_operand
      { if (!($$ = build.leaf($1))) YYERROR; }
  | SUBSTR '(' expression ',' expression ',' expression ')'
      { if (!($$ = build.call(ZEMAD_EvalSubstr, {$3, $5, $7}))) YYERROR; }
  | IPNAME '(' expression ')'
      { if (!($$ = build.call(ZEMAD_EvalIPname, {$3}))) YYERROR; }
  | IPADDR '(' expression ')'
      { if (!($$ = build.call(ZEMAD_EvalIPaddr, {$3}))) YYERROR; }
  ;

map_part
  : %empty        { $$ = nullptr; }
  | MAP map_list  { $$ = $2; }
  ;

map_list
  : map_item           { if (!($$ = build.add_map(nullptr, $1))) YYERROR; }
  | map_list map_item  { if (!($$ = build.add_map($1, $2))) YYERROR; }
  ;

map_item
  : slot_name '=' variable ';'
      { if (!($$ = build.assignment($1, $3))) YYERROR; }
  | slot_name '=' format variables ')' ';'
      { if (!($$ = build.printf($1, $3, $4))) YYERROR; }
  ;

slot_name
  : STRING  { if (!($$ = build.copy(scan.token()))) YYERROR; }
  ;

format
  : PRINTF '(' { scan.switch_reserved_words(false); } STRING
      { scan.switch_reserved_words(true); if (!($$ = build.copy(scan.token()))) YYERROR; }
  ;

variables
  : ',' variable            { if (!($$ = build.add_variable(nullptr, $2))) YYERROR; }
  | variables ',' variable  { if (!($$ = build.add_variable($1, $3))) YYERROR; }
  ;

variable
  : fetch_operand  { if (!($$ = build.variable($1))) YYERROR; }
  ;

/* Default slots --------------------------------------------------------------------------------*/

default_section
  : MAP_DEFAULT default_list END
  ;

default_list
  : default_item               { if (!build.add_default($1)) YYERROR; }
  | default_list default_item  { if (!build.add_default($2)) YYERROR; }
  ;

default_item
  : slot_name '=' default_variable ';'
      { if (!($$ = build.default_assignment($1, $3))) YYERROR; }
  | slot_name '=' format default_variables ')' ';'
      { if (!($$ = build.printf($1, $3, $4))) YYERROR; }
  ;

default_variables
  : ',' default_variable                    { if (!($$ = build.add_variable(nullptr, $2))) YYERROR; }
  | default_variables ',' default_variable  { if (!($$ = build.add_variable($1, $3))) YYERROR; }
  ;

default_variable
  : plain_operand  { if (!($$ = build.variable($1))) YYERROR; }
  ;

/* Operands, from the most to the least that may be named ---------------------------------------*/

fetch_operand
  : operand
  | FETCH_REF  { if (!build.fetch_reference($1, $$)) YYERROR; }
  ;

operand
  : plain_operand
  | NAME_REF   { if (!build.attr_reference(ZEMAD_ACCESS_NAME, $1, $$)) YYERROR; }
  | KEY_REF    { if (!build.attr_reference(ZEMAD_ACCESS_KEY, $1, $$)) YYERROR; }
  | VALUE_REF  { if (!build.attr_reference(ZEMAD_ACCESS_VALUE, $1, $$)) YYERROR; }
  ;

plain_operand
  : STRING   { if (!build.constant(scan.token(), $$)) YYERROR; }
  | NUMBER   { if (!build.constant($1, $$)) YYERROR; }
  | KEYWORD  { $$ = {ZEMAD_ACCESS_GLOBAL, $1}; }
  ;
