// The cells that the engine's packer knows.
(* blackbox *)
module LUT #(parameter K = 4, parameter [2**K-1:0] INIT = 0) (input [K-1:0] I, output Q);
endmodule

(* blackbox *)
module DFF (input CLK, D, output Q);
endmodule
