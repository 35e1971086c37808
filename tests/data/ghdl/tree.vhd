-- A hierarchy: a package with a signal and physical types, ports of all kinds, generates, and names
-- that are no plain words.
library ieee;
use ieee.std_logic_1164.all;

package measures is
    type charge_t is range -1000000 to 1000000
        units
            uc;
            mc = 1000 uc;
        end units;
    type length_t is range 0 to 9007199254740993
        units
            um;
            mm = 1000 um;
            m  = 1000 mm;
        end units;
    signal charge : charge_t := 2 mc;
    signal beat   : std_logic := '0';
end package;

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

entity stage is
    generic (width : positive);
    port (
        clk  : in std_logic;
        d    : in std_logic_vector(width - 1 downto 0);
        q    : out std_logic_vector(0 to width - 1);
        pad  : inout std_logic;
        full : buffer boolean
    );
end entity;

architecture rtl of stage is
    signal count : unsigned(width - 1 downto 0) := (others => '0');
begin
    process (clk)
    begin
        if rising_edge(clk) then
            count <= count + unsigned(d);
            full <= not full;
        end if;
    end process;
    q <= std_logic_vector(count);
    pad <= 'Z' when full else 'L';
end architecture;

library ieee;
use ieee.std_logic_1164.all;
use work.measures.all;

entity tree is
end entity;

architecture sim of tree is
    type pipe_t is array (-1 to 1) of std_logic_vector(4 downto 1);

    signal clk         : std_logic := '0';
    signal pipe        : pipe_t := (others => "0010");
    signal pad         : std_logic := 'H';
    signal \a b(1).\\c\ : bit_vector(2 to 5) := "1001";
    signal word        : string(1 to 6) := "start ";
    signal letter      : character := 'a';
    signal way         : length_t := 5 mm;
    signal farthest    : length_t := length_t'high;
    signal temperature : real := 20.0;
    signal none        : std_logic_vector(1 downto 2);

    signal word_number, letter_number, charge_number, way_number, back : integer;
begin
    clk <= not clk after 1234567 fs when now < 60 ns else '0';
    beat <= clk;
    back <= -way_number;

    letter_number <= character'pos(letter);
    word_number <= character'pos(word(6));
    charge_number <= charge / 1 uc;
    way_number <= way / 1 mm;

    gen : for k in -1 to 0 generate
        signal loc : std_logic := 'U';
    begin
        u : entity work.stage generic map (width => 4)
            port map (clk, pipe(k), pipe(k + 1), pad, open);
        loc <= clk after 100 ps;
        odd : if k = 0 generate
            signal inner : bit := '1';
        begin
            inner <= not inner after 7 ns when now < 50 ns;
        end generate;
    end generate;

    each : for flag in boolean generate
        signal state : boolean := flag;
    begin
        state <= not state after 11 ns when now < 50 ns;
    end generate;

    blk : block
        signal small : integer range -8 to 7 := -8;
    begin
        small <= -1 after 3 ns, 7 after 4 ns;
        direct : entity work.stage generic map (width => 2)
            port map (clk => clk, d => pipe(0)(4 downto 3), q => open, pad => pad, full => open);
    end block;

    process
    begin
        for step in 1 to 12 loop
            wait for step * 777 ps;
            pipe(-1)(1 + step mod 4) <= std_ulogic'val((step * 5) mod 9);
            \a b(1).\\c\(2 + step mod 4) <= bit'val(step / 2 mod 2);
            word <= "step " & character'val(48 + step);
            letter <= character'val(20 * step);
            charge <= (step - 6) * 1 mc;
            way <= way * 3;
            temperature <= temperature / 3.0 - 7.0;
            pad <= 'W';
            wait for 1 fs;
            pad <= 'H';
        end loop;
        wait;
    end process;
end architecture;
