-- Signals of all types, and beside them scalars and vectors of the same values.
library ieee;
use ieee.std_logic_1164.all;

entity mirror is
end entity;

architecture sim of mirror is
    type op_t is (nop, rd, '1', \Extended op\);
    type res_t is range 0 to 1000000
        units
            ohm;
            kohm = 1000 ohm;
        end units;
    type pair_t is record
        op   : op_t;
        data : std_logic_vector(3 downto 0);
        res  : res_t;
    end record;
    type pairs_t is array (natural range <>, boolean range <>) of pair_t;
    type rows_t is array (1 downto 0) of bit_vector(0 to 2);
    type nest_t is record
        rows : rows_t;
        pair : pairs_t(7 to 7, true to true);
    end record;
    type nests_t is array (op_t) of nest_t;

    signal pairs : pairs_t(2 to 3, false to true) := (others => (others => (rd, "01ZX", 5 ohm)));
    signal nests : nests_t := (others => (("001", "110"), (others => (others => (nop, "HLWU", 0 ohm)))));
    signal span  : time := 1 ns;
    signal level : real := 0.5;

    signal op_number, ohms, picoseconds, nested_ohms, nested_op : integer;
    signal data : std_logic_vector(3 downto 0);
    signal row  : bit_vector(0 to 2);
    signal half : real;
begin
    op_number   <= op_t'pos(pairs(3, true).op);
    ohms        <= pairs(2, false).res / 1 ohm;
    picoseconds <= span / 1 ps;
    nested_ohms <= nests('1').pair(7, true).res / 1 ohm;
    nested_op   <= op_t'pos(nests(\Extended op\).pair(7, true).op);
    data        <= pairs(3, true).data;
    row         <= nests(rd).rows(0);
    half        <= level / 2.0;

    process
    begin
        for step in 1 to 20 loop
            wait for 1500 ps * step;
            pairs(3, true).op <= op_t'val(step mod 4);
            pairs(2, false).res <= step * 3 kohm;
            pairs(3, true).data(step mod 4) <= std_ulogic'val(step mod 9);
            nests('1').pair(7, true).res <= (step / 3) * 7 ohm;
            nests(\Extended op\).pair(7, true).op <= op_t'val((step / 2) mod 4);
            nests(rd).rows(0)(step mod 3) <= bit'val(step mod 2);
            span <= span + 333 ps;
            level <= level * (-1.5);
        end loop;
        wait;
    end process;
end architecture;
