// Two clock domains that compete for the same device. Domain a filters samples; domain b watches the filtered
// stream: a checksum, a running peak and a level histogram. A toggle handshake carries one result at a time across.

module two_clock (
    input         clk_a,
    input  [11:0] sample,
    output [13:0] filtered,
    input         clk_b,
    input  [2:0]  select,
    output [15:0] status,
    output        alarm
);
  // Domain a: a four-tap filter with a coefficient that follows the input level.
  reg [11:0] tap0, tap1, tap2, tap3;
  reg [7:0]  gain;
  reg [12:0] near_sum, far_sum;
  reg [15:0] near_product;
  reg [11:0] far_product;
  reg [13:0] result;
  reg        toggle_a;
  reg [13:0] handed_over;
  reg [4:0]  pace;

  always @(posedge clk_a) begin
    tap0 <= sample;
    tap1 <= tap0;
    tap2 <= tap1;
    tap3 <= tap2;
    gain <= (tap0[11:4] > tap3[11:4]) ? gain + 3 : gain - 1;
    near_sum <= tap1 + tap2;
    far_sum <= tap0 + tap3;
    near_product <= near_sum[12:5] * gain;
    far_product <= far_sum[12:7] * gain[7:2];
    result <= near_product[15:2] - far_product;
    pace <= pace + 1;
    if (pace == 0) begin
      handed_over <= result;
      toggle_a <= ~toggle_a;
    end
  end
  assign filtered = result;

  // Domain b: the toggle arrives through two flip-flops; handed_over is steady by then.
  reg [2:0]  toggle_b;
  reg [13:0] word;
  reg        fresh;
  reg [31:0] checksum;
  reg [13:0] peak;
  reg [17:0] average;
  reg [11:0] count0, count1, count2, count3;
  reg [2:0]  select_b;
  reg [15:0] status_b;
  reg        alarm_b;

  function [31:0] fold(input [31:0] sum, input [7:0] data);
    integer i;
    begin
      fold = sum;
      for (i = 0; i < 8; i = i + 1)
        fold = {fold[30:0], 1'b0} ^ ((fold[31] ^ data[i]) ? 32'h04c11db7 : 32'h0);
    end
  endfunction

  always @(posedge clk_b) begin
    toggle_b <= {toggle_b[1:0], toggle_a};
    fresh <= toggle_b[2] ^ toggle_b[1];
    word <= handed_over;
    if (fresh) begin
      checksum <= fold(checksum, word[7:0]);
      peak <= (word > peak) ? word : peak - peak[13:9];
      average <= average - average[17:4] + word;
      case (word[13:12])
        0: count0 <= count0 + 1;
        1: count1 <= count1 + 1;
        2: count2 <= count2 + 1;
        3: count3 <= count3 + 1;
      endcase
    end
    select_b <= select;
    case (select_b)
      0: status_b <= checksum[15:0];
      1: status_b <= checksum[31:16];
      2: status_b <= {2'b0, peak};
      3: status_b <= average[17:2];
      4: status_b <= count0 + count1;
      5: status_b <= count2 + count3;
      6: status_b <= count0 ^ count2;
      7: status_b <= count1 ^ count3;
    endcase
    alarm_b <= average[17:4] > peak;
  end
  assign status = status_b;
  assign alarm = alarm_b;
endmodule
