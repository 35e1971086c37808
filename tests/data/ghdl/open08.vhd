library ieee;
use ieee.std_logic_1164.all;
entity open08 is end entity;
architecture sim of open08 is
    type word_t is record
        valid : std_logic;
        data  : std_logic_vector;
    end record;
    type words_t is array (natural range <>) of word_t;
    type lists_t is array (natural range <>) of std_logic_vector;
    signal word  : word_t(data(3 downto 0)) := ('0', "0101");
    signal words : words_t(0 to 1)(data(1 downto 0)) := (('1', "01"), ('0', "10"));
    signal lists : lists_t(4 downto 3)(0 to 2) := ("UX0", "1ZW");
    signal valid : std_logic;
    signal data : std_logic_vector(3 downto 0);
    signal second : std_logic_vector(1 downto 0);
    signal list : std_logic_vector(0 to 2);
begin
    valid <= word.valid; data <= word.data; second <= words(1).data; list <= lists(3);
    process begin
        wait for 5 ns;
        word <= ('1', "10HL"); words(1).data <= "ZZ"; lists(3)(1) <= '-';
        wait for 5 ns;
        word.data(2) <= 'X'; words(1).data(0) <= '0';
        wait;
    end process;
end architecture;
