// From the synthesiser's cells to the engine's. Smaller LUTs leave their upper inputs at 0.
module \$lut (A, Y);
  parameter WIDTH = 0;
  parameter LUT = 0;
  input [WIDTH-1:0] A;
  output Y;
  wire [3:0] I;
  assign I = {{(4-WIDTH){1'b0}}, A};
  LUT #(.K(4), .INIT({(16/(1<<WIDTH)){LUT[(1<<WIDTH)-1:0]}})) _TECHMAP_REPLACE_ (.I(I), .Q(Y));
endmodule

module \$_DFF_P_ (input D, C, output Q);
  DFF _TECHMAP_REPLACE_ (.CLK(C), .D(D), .Q(Q));
endmodule
